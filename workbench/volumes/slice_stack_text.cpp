// What the warnings of a stack say.
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/slice_stack.h"

namespace volumes {

std::string Stack_Warning_Text(const Stack_Warning& warning, bool is_frame) {
    const std::string frame = "frame " + Count_Text(static_cast<std::uint64_t>(warning.slice) + 1);
    const std::string off = " mm from where they lie";
    switch (warning.kind) {
        case Stack_Warning::Kind::Tilted:
            return (is_frame ? "has a stack of frames tilted by " : "begins a stack of slices tilted by ") +
                   Amount_Text(warning.amount) +
                   " degrees: every position is right, but the slices do not lie straight above one another";
        case Stack_Warning::Kind::Uneven:
            return (is_frame ? "has frames at uneven distances (" + frame + "): they"
                             : std::string("lies at an uneven distance from its neighbours: slices")) +
                   " are shown up to " + Amount_Text(warning.amount) + off;
        case Stack_Warning::Kind::Curved:
            return (is_frame ? "has frames beside the line of the others (" + frame + "): they"
                             : std::string("lies beside the line of the other slices: slices")) +
                   " are shown up to " + Amount_Text(warning.amount) + off;
        case Stack_Warning::Kind::Turned:
            return (is_frame ? "has frames turned or sized a little otherwise than the first (" + frame + "): pixels"
                             : std::string("is turned or sized a little otherwise than the other slices: pixels")) +
                   " are shown up to " + Amount_Text(warning.amount) + off;
        case Stack_Warning::Kind::Unequal:
            return (is_frame ? "has frames whose places do not occur equally often (" + frame + "): they"
                             : std::string("belongs to a series whose positions do not occur equally often: it")) +
                   (is_frame ? " are" : " is") + " shown as " + Count_Text(static_cast<std::uint64_t>(warning.amount)) +
                   " volumes";
        case Stack_Warning::Kind::Time_Guessed:
            return std::string(is_frame ? "has several frames at one place, and does not say which is earlier: they "
                                          "are taken in the file's order"
                                        : "lies where other slices of its series lie, and does not say which is "
                                          "earlier: they are taken in order of number");
        case Stack_Warning::Kind::Scattered:
            return std::string(is_frame ? "has frames" : "belongs to a series with slices") + " in " +
                   Count_Text(static_cast<std::uint64_t>(warning.amount)) +
                   " directions or places beside one another: they are shown one after the other, without a place in "
                   "the patient";
    }
    return {};
}

}  // namespace volumes
