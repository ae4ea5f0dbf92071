/** Texts in another code page than the system's, from here to the end of the scope. Without Windows they stay UTF-8. */
#pragma once

#if defined(_WIN32)

#include "kits/common/text_conversion.h"

inline constexpr unsigned int PAGE_JAPANESE = 932;  ///< characters of one and two bytes
inline constexpr unsigned int PAGE_UTF8 = 65001;

class Other_Code_Page {
  public:
    explicit Other_Code_Page(unsigned int code_page) { Code_Page_Set(code_page); }
    ~Other_Code_Page() { Code_Page_Set(0); }
    Other_Code_Page(const Other_Code_Page&) = delete;
    Other_Code_Page& operator=(const Other_Code_Page&) = delete;
};

#endif
