// The headers that CMakeLists.txt names are compiled with this file.
