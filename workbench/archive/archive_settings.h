/** Archives that the workbench searches, fetches from and sends to, by the DICOM protocol. */
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace workbench::archive {

struct Archive_Times {
    std::chrono::milliseconds connect{5000};    ///< until something answers at the address
    std::chrono::milliseconds associate{5000};  ///< until the archive has agreed to speak
    std::chrono::milliseconds silence{30000};   ///< without a byte, in whatever follows
};

/** One archive. Texts are UTF-8. */
struct Archive_Settings {
    std::string name;  ///< what the user calls it
    std::string host;  ///< a name, or an address of four numbers
    int port = 104;
    std::string called_title;             ///< the archive's application entity title
    std::string own_title = "WORKBENCH";  ///< what the archive knows this program by
    Archive_Times times;
    bool is_moved = false;  ///< images come by C-MOVE, over a connection that the archive makes; else by C-GET
    int own_port = 11112;   ///< that the archive knows for it
    /** Addresses of four numbers, with blanks between, that images may come from by C-MOVE besides the archive's. */
    std::string other_callers;
    bool is_encrypted = false;  ///< by TLS; images come by C-GET then
    std::string trusted_file;   ///< of certificates that the archive's is signed with; empty: those of this computer
    std::string own_file;       ///< of this program's certificate and its key; empty: it has none
};

inline constexpr int PORT_MAX = 65535;
inline constexpr std::size_t TITLE_MOST = 16;       ///< letters of an application entity title
inline constexpr std::size_t IDENTIFIER_MOST = 64;  ///< letters of a unique identifier
inline constexpr std::size_t HOST_MOST = 253;       ///< letters of a host's name

/** Whether a text can be an application entity title: printable ASCII without a backslash, and not only blanks. */
bool Is_Title(std::string_view text);
/** Whether a text is a unique identifier: numbers between single dots. Such a text is harmless as the name of a file.
 */
bool Is_Identifier(std::string_view text);
/** @return empty, or one sentence about what is wrong with the settings */
std::string Settings_Doubt(const Archive_Settings& settings);
/** An archive as one line of the settings' file, without control characters. */
std::string Archive_Line(const Archive_Settings& settings);
/** @return no value: the line is none, or what it says cannot be right */
std::optional<Archive_Settings> Archive_Of_Line(std::string_view line);
/** "The archive Radiology (pacs.example:104)", to begin a sentence with. */
std::string Archive_Title(const Archive_Settings& settings);

}  // namespace workbench::archive
