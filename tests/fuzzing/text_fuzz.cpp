// libFuzzer: what reads texts: the text field's editing model, styles of messages, paths.
#include <algorithm>
#include <string>
#include <vector>

#include "host/kit_common.h"
#include "kits/common/messages.h"
#include "kits/widgets/text_edit_core.h"
#include "tests/fuzzing/input_bytes.h"

namespace {

constexpr int BUFFER_MOST = 64;

void Edit(Input_Bytes& input) {
    std::vector<char> buffer(static_cast<std::size_t>(1 + input.Below(BUFFER_MOST)));
    const std::string start = input.Text(static_cast<int>(buffer.size()) - 1);
    std::copy(start.begin(), start.end(), buffer.begin());
    buffer[start.size()] = 0;
    Text_Edit edit(buffer.data(), static_cast<int>(buffer.size()), input.Take<std::int16_t>(),
                   input.Take<std::int16_t>());
    for (int step = 0; step < 60 && !input.At_End(); ++step) {
        const bool select = (input.Take<std::uint8_t>() & 1) != 0;
        switch (input.Below(11)) {
            case 0:
                edit.Move_To(input.Take<std::int16_t>(), select);
                break;
            case 1:
                edit.Left(select);
                break;
            case 2:
                edit.Right(select);
                break;
            case 3:
                edit.Word_Left(select);
                break;
            case 4:
                edit.Word_Right(select);
                break;
            case 5:
                edit.Select_All();
                break;
            case 6:
                edit.Insert(input.Text(BUFFER_MOST));
                break;
            case 7:
                edit.Insert_Code_Point(input.Take<std::uint32_t>());
                break;
            case 8:
                edit.Backspace();
                break;
            case 9:
                edit.Delete();
                break;
            default:
                edit.End(select);
        }
        Require(edit.Length() >= 0 && edit.Length() < static_cast<int>(buffer.size()));
        Require(buffer[static_cast<std::size_t>(edit.Length())] == 0);
        Require(edit.Caret() >= 0 && edit.Caret() <= edit.Length());
        Require(edit.Anchor() >= 0 && edit.Anchor() <= edit.Length());
        Require(edit.Selection_Start() <= edit.Selection_End());
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input_Bytes input(data, size);
    Edit(input);
    const std::string message = input.Text(400);
    std::string plain;
    for (const Message_Run& run : Message_Runs(message.c_str())) {
        plain += run.text;
    }
    Require(plain == Message_Plain(message.c_str()));
    const std::string path = input.Text(400);
    std::string parts[3];
    for (std::string& part : parts) {
        part.resize(path.size() + 1);
    }
    Get_Generic_Name(path.c_str(), parts[0].data(), parts[1].data(), parts[2].data());
    return 0;
}
