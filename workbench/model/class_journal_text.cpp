// The journal of the class trees as text: see class_journal.h for its form.
#include <climits>
#include <cstdint>
#include <string_view>
#include <utility>

#include "workbench/model/class_journal.h"
#include "workbench/model/line_reader.h"

namespace workbench {

namespace {

constexpr const char* KIND_NAME[CLASS_KIND_NB] = {"1D", "2D", "3D"};
constexpr std::string_view FIRST_LINE = "class journal 1";
constexpr std::string_view NOWHERE = "nowhere";

// ---------------- writing

std::string Place_Text(const Class_Place& place) {
    return place.parent.empty() ? std::string(NOWHERE)
                                : Quoted_Text(place.parent) + " " + std::to_string(place.position);
}

std::string Action_Text(const Class_Action& action) {
    if (const auto* const move = std::get_if<Class_Move>(&action)) {
        return "move " + Quoted_Text(move->id) + " from " + Place_Text(move->from) + " to " + Place_Text(move->to) +
               "\n";
    }
    const auto& rename = std::get<Class_Rename>(action);
    return "name " + Quoted_Text(rename.id) + " from " + Quoted_Text(rename.before) + " to " +
           Quoted_Text(rename.after) + "\n";
}

// ---------------- reading

std::string Id_Of(Line_Reader& reader) {
    std::string id = reader.Text();
    if (id.empty()) {
        reader.Fail("an id is empty");
    }
    return id;
}

Class_Place Place_Of(Line_Reader& reader) {
    if (reader.Is_Next(NOWHERE)) {
        reader.Expect(NOWHERE);
        return {};
    }
    Class_Place place;
    place.parent = Id_Of(reader);
    place.position = static_cast<int>(reader.Number(INT_MAX));
    return place;
}

/** Reads line after line. */
class Journal_Reader {
  public:
    Journal_Reader(std::vector<Class_Step>* into, std::size_t* done) : steps(into), done_nb(done) {}

    void Line(std::string_view line) {
        Line_Reader reader(line);
        if (is_ended) {
            reader.Fail("there is more after the end");
        } else if (state == State::First) {
            if (line != FIRST_LINE) {
                reader.Fail("this is no journal of class trees, or one of a later version");
            }
            state = State::Done;
        } else if (state == State::Done) {
            reader.Expect("done");
            *done_nb = reader.Number(SIZE_MAX);
            reader.End();
            state = State::Steps;
        } else {
            Step_Line(reader);
        }
        error = reader.Error();
    }
    const std::string& Error() const { return error; }
    bool Is_Ended() const { return is_ended; }

  private:
    enum class State { First, Done, Steps };

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
            move.id = Id_Of(reader);
            reader.Expect("from");
            move.from = Place_Of(reader);
            reader.Expect("to");
            move.to = Place_Of(reader);
            steps->back().actions.emplace_back(std::move(move));
        } else {
            Class_Rename rename;
            rename.id = Id_Of(reader);
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
        return Class_Kind::Classes_2D;
    }

    std::vector<Class_Step>* steps;
    std::size_t* done_nb;
    State state = State::First;
    bool is_ended = false;
    std::string error;
};

}  // namespace

std::string Class_Journal_Text(const std::vector<Class_Step>& steps, std::size_t done_nb) {
    std::string text = std::string(FIRST_LINE) + "\ndone " + std::to_string(done_nb) + "\n";
    for (const Class_Step& step : steps) {
        text += std::string("step ") + KIND_NAME[static_cast<std::size_t>(step.kind)] + " " + Quoted_Text(step.title) +
                "\n";
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
        const std::string_view line = Line_Take(rest);
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

}  // namespace workbench
