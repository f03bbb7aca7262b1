// What was checked, a line for each.
#pragma once

#include <ostream>
#include <string>

namespace tool {

class Report {
  public:
    explicit Report(std::ostream &out) : out_(out) {}

    void heading(const std::string &text) { out_ << text << '\n'; }

    // Returns `good`.
    bool check(bool good, const std::string &text) {
        line(good ? "ok" : "FAILED", text);
        all_good_ = all_good_ && good;
        return good;
    }

    // What is neither good nor bad.
    void note(const std::string &text) { line("note", text); }

    bool all_good() const { return all_good_; }

  private:
    void line(std::string word, const std::string &text) {
        constexpr size_t kColumn = 8;
        word.resize(kColumn, ' ');
        out_ << "  " << word << text << '\n';
    }

    std::ostream &out_;
    bool all_good_ = true;
};

}  // namespace tool
