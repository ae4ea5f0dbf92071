/** Stands for the windows that speak with the user: notes what is told and asked, and gives the answers laid ready. */
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "workbench/model/dialogs.h"

namespace workbench {

/** What is asked without an answer laid ready fails the test, and is given up. */
struct Dialogs_Double : Dialogs {
    using Path = std::optional<std::filesystem::path>;

    std::vector<std::string> told;
    std::vector<std::string> warned;
    std::vector<std::string> logged;
    std::vector<std::string> asked;    ///< "TITLE: TEXT", file questions "TITLE: START"
    std::vector<std::string> offered;  ///< ways, lines or choices of the last question
    int warnings_closed = 0;
    std::vector<std::string> run;  ///< what took a while
    bool is_given_up = false;      ///< while something runs

    std::deque<std::optional<std::string>> texts;
    std::deque<int> ways;  ///< also of lines and texts that are shown
    std::deque<Answer> answers;
    std::deque<Path> files;

    using Dialogs::Warn;
    void Tell(const std::string& text) override { told.push_back(text); }
    void Warn(const std::string& text, Warning_Subject) override { warned.push_back(text); }
    void Warnings_Close(std::optional<Warning_Subject>) override { ++warnings_closed; }
    void Log(const std::string& line) override { logged.push_back(line); }

    std::optional<std::string> Text_Ask(const std::string& title, const std::string& question,
                                        const std::string& start) override {
        offered = {start};
        return Asked(texts, title, question, std::optional<std::string>());
    }
    int Line_Ask(const std::string& title, const std::string& label, const std::vector<std::string>& lines, int,
                 const std::string&) override {
        offered = lines;
        return Asked(ways, title, label, -1);
    }
    int Way_Ask(const std::string& title, const std::string& text, const std::vector<std::string>& its_ways) override {
        offered = its_ways;
        return Asked(ways, title, text, -1);
    }
    bool Yes_No_Ask(const std::string& title, const std::string& question) override {
        return Asked(answers, title, question, Answer::No) == Answer::Yes;
    }
    Answer Yes_No_Cancel_Ask(const std::string& title, const std::string& question) override {
        return Asked(answers, title, question, Answer::Cancel);
    }
    int Text_Show(const std::string& title, const std::string& text, const std::vector<std::string>& choices) override {
        offered = choices;
        return Asked(ways, title, text, -1);
    }
    Path File_To_Open(const std::string& title, File_Kind) override { return Asked(files, title, {}, Path()); }
    Path Folder_To_Open(const std::string& title) override { return Asked(files, title, {}, Path()); }
    Path File_To_Save(const std::string& title, File_Kind, const std::filesystem::path& start) override {
        return Asked(files, title, start.filename().string(), Path());
    }
    void Run(const std::string& what, const std::function<void(const volumes::Load_Progress&)>& action) override {
        run.push_back(what);
        action([this](double) { return !is_given_up; });
    }

  private:
    template <class Reply>
    Reply Asked(std::deque<Reply>& replies, const std::string& title, const std::string& text, const Reply& given_up) {
        asked.push_back(title + ": " + text);
        if (replies.empty()) {
            ADD_FAILURE() << "nobody expected the question " << asked.back();
            return given_up;
        }
        Reply reply = replies.front();
        replies.pop_front();
        return reply;
    }
};

}  // namespace workbench
