// The journal of the class trees as text: see class_journal.h for its form.
#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <utility>

#include "workbench/model/class_journal.h"

namespace {

constexpr const char* KIND_NAME[CLASS_KIND_NB] = {"1D", "2D", "3D"};
constexpr std::string_view FIRST_LINE = "class journal 1";
constexpr std::string_view NOWHERE = "nowhere";

// ---------------------------------------------------------------------------------------------------------------
// writing

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (character == '"' || character == '\\') {
            quoted += '\\';
            quoted += character;
        } else if (code < ' ' || code == 0x7F) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02X", code);
            quoted += escape;
        } else {
            quoted += character;
        }
    }
    return quoted + '"';
}

std::string Place_Text(const Class_Place& place) {
    return place.parent.empty() ? std::string(NOWHERE) : Quoted(place.parent) + " " + std::to_string(place.position);
}

std::string Action_Text(const Class_Action& action) {
    if (const auto* const move = std::get_if<Class_Move>(&action)) {
        return "move " + Quoted(move->id) + " from " + Place_Text(move->from) + " to " + Place_Text(move->to) + "\n";
    }
    const auto& rename = std::get<Class_Rename>(action);
    return "name " + Quoted(rename.id) + " from " + Quoted(rename.before) + " to " + Quoted(rename.after) + "\n";
}

// ---------------------------------------------------------------------------------------------------------------
// reading

/** Reads the words of a line; the first thing that is wrong is kept. */
class Line_Reader {
  public:
    explicit Line_Reader(std::string_view of_line) : rest(of_line) {}

    /** A bare word; empty at the end of the line. */
    std::string_view Word() {
        Blanks();
        const std::size_t end = std::min(rest.find(' '), rest.size());
        const std::string_view word = rest.substr(0, end);
        rest.remove_prefix(end);
        return word;
    }
    void Expect(std::string_view word) {
        if (Word() != word) {
            Fail("\"" + std::string(word) + "\" is expected");
        }
    }
    std::size_t Number(std::size_t most) {
        const std::string_view word = Word();
        std::size_t number = 0;
        const auto [end, code] = std::from_chars(word.data(), word.data() + word.size(), number);
        if (code != std::errc() || end != word.data() + word.size() || word.empty() || number > most) {
            Fail("a number is expected");
            return 0;
        }
        return number;
    }
    std::string Text() {
        Blanks();
        if (rest.empty() || rest.front() != '"') {
            Fail("a text between quotation marks is expected");
            return {};
        }
        std::string text;
        for (rest.remove_prefix(1); !rest.empty(); rest.remove_prefix(1)) {
            if (rest.front() == '"') {
                rest.remove_prefix(1);
                return text;
            }
            // Escape() may use up the rest.
            // cppcheck-suppress containerOutOfBounds
            text += rest.front() == '\\' ? Escape() : rest.front();
            if (rest.empty()) {
                break;
            }
        }
        Fail("a text is not closed");
        return {};
    }
    Class_Place Place() {
        Blanks();
        if (rest.starts_with(NOWHERE)) {
            Expect(NOWHERE);
            return {};
        }
        Class_Place place;
        place.parent = Id();
        place.position = static_cast<int>(Number(INT_MAX));
        return place;
    }
    std::string Id() {
        std::string id = Text();
        if (id.empty()) {
            Fail("an id is empty");
        }
        return id;
    }
    void End() {
        if (!Word().empty()) {
            Fail("there is more than expected");
        }
    }
    void Fail(const std::string& what) {
        if (error.empty()) {
            error = what;
        }
    }
    const std::string& Error() const { return error; }

  private:
    void Blanks() { rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size())); }
    /** The character that an escape stands for; its last character is left for the caller to pass. */
    char Escape() {
        constexpr std::size_t HEX_LENGTH = 4;  // of \xHH
        if (rest.size() >= 2 && (rest[1] == '"' || rest[1] == '\\')) {
            rest.remove_prefix(1);
            return rest.front();
        }
        unsigned int code = 0;
        if (rest.size() >= HEX_LENGTH && rest[1] == 'x') {
            const char* const end = rest.data() + HEX_LENGTH;
            const auto read = std::from_chars(rest.data() + 2, end, code, 16);
            if (read.ec == std::errc() && read.ptr == end) {
                rest.remove_prefix(HEX_LENGTH - 1);
                return static_cast<char>(code);
            }
        }
        Fail("a character after \\ means nothing");
        return ' ';
    }

    std::string_view rest;
    std::string error;
};

/** Reads line after line. */
class Journal_Reader {
  public:
    Journal_Reader(std::vector<Class_Step>* into, std::size_t* done) : steps(into), done_nb(done) {}

    void Line(std::string_view line) {
        Line_Reader reader(line);
        if (is_ended) {
            reader.Fail("there is more after the end");
        } else if (state == State::FIRST) {
            if (line != FIRST_LINE) {
                reader.Fail("this is no journal of class trees, or one of a later version");
            }
            state = State::DONE;
        } else if (state == State::DONE) {
            reader.Expect("done");
            *done_nb = reader.Number(SIZE_MAX);
            reader.End();
            state = State::STEPS;
        } else {
            Step_Line(reader);
        }
        error = reader.Error();
    }
    const std::string& Error() const { return error; }
    bool Is_Ended() const { return is_ended; }

  private:
    enum class State { FIRST, DONE, STEPS };

    void Step_Line(Line_Reader& reader) {
        const std::string_view word = reader.Word();
        if (word == "step") {
            steps->emplace_back();
            steps->back().kind = Kind(reader);
            steps->back().title = reader.Text();
        } else if (word == "end") {
            if (reader.Number(SIZE_MAX) != steps->size()) {
                reader.Fail("steps are missing");
            }
            if (*done_nb > steps->size()) {
                reader.Fail("more steps are done than there are");
            }
            is_ended = true;
        } else if (steps->empty() || (word != "move" && word != "name")) {
            reader.Fail("\"step\", \"move\", \"name\" or \"end\" is expected");
        } else if (word == "move") {
            Class_Move move;
            move.id = reader.Id();
            reader.Expect("from");
            move.from = reader.Place();
            reader.Expect("to");
            move.to = reader.Place();
            steps->back().actions.emplace_back(std::move(move));
        } else {
            Class_Rename rename;
            rename.id = reader.Id();
            reader.Expect("from");
            rename.before = reader.Text();
            reader.Expect("to");
            rename.after = reader.Text();
            steps->back().actions.emplace_back(std::move(rename));
        }
        reader.End();
    }
    static Class_Kind Kind(Line_Reader& reader) {
        const std::string_view word = reader.Word();
        for (int i = 0; i < CLASS_KIND_NB; ++i) {
            if (word == KIND_NAME[i]) {
                return static_cast<Class_Kind>(i);
            }
        }
        reader.Fail("\"1D\", \"2D\" or \"3D\" is expected");
        return Class_Kind::CLASSES_2D;
    }

    std::vector<Class_Step>* steps;
    std::size_t* done_nb;
    State state = State::FIRST;
    bool is_ended = false;
    std::string error;
};

}  // namespace

std::string Class_Journal_Text(const std::vector<Class_Step>& steps, std::size_t done_nb) {
    std::string text = std::string(FIRST_LINE) + "\ndone " + std::to_string(done_nb) + "\n";
    for (const Class_Step& step : steps) {
        text += std::string("step ") + KIND_NAME[static_cast<std::size_t>(step.kind)] + " " + Quoted(step.title) + "\n";
        for (const Class_Action& action : step.actions) {
            text += Action_Text(action);
        }
    }
    return text + "end " + std::to_string(steps.size()) + "\n";
}

std::string Class_Journal_Parse(const std::string& text, std::vector<Class_Step>* steps, std::size_t* done_nb) {
    steps->clear();
    *done_nb = 0;
    Journal_Reader reader(steps, done_nb);
    std::string_view rest = text;
    for (int number = 1; !rest.empty(); ++number) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        std::string_view line = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        if (line.empty() || line.front() == '#') {
            continue;
        }
        reader.Line(line);
        if (!reader.Error().empty()) {
            return "line " + std::to_string(number) + ": " + reader.Error();
        }
    }
    return reader.Is_Ended() ? std::string() : "its end is missing";
}
