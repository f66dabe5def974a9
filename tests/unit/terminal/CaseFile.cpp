#include "CaseFile.h"

#include "terminal/Terminal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <utility>

namespace qncomm::testing {
namespace {

/// What is wrong with a line.
using Mistake = std::runtime_error;

constexpr std::string_view Blanks = " \t";

std::string_view Trimmed(std::string_view text) {
    const std::size_t from = text.find_first_not_of(" \t\r");
    if (from == std::string_view::npos) return {};
    return text.substr(from, text.find_last_not_of(" \t\r") - from + 1);
}

/// Takes the first word off.
std::string_view TakeWord(std::string_view& rest) {
    const std::size_t end = std::min(rest.find_first_of(Blanks), rest.size());
    const std::string_view word = rest.substr(0, end);
    rest = Trimmed(rest.substr(end));
    return word;
}

std::int16_t TakeNumber(std::string_view& rest, std::int16_t most) {
    const std::string_view word = TakeWord(rest);
    std::int16_t number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc{} || end != word.data() + word.size() || number < 1 || number > most)
        throw Mistake("expected a number from 1 to " + std::to_string(most));
    return number;
}

char ByteOfHex(std::string_view digits) {
    unsigned value = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (digits.size() != 2 || error != std::errc{} || end != digits.data() + 2)
        throw Mistake("expected two hexadecimal digits");
    return static_cast<char>(value);
}

/// The letters that may follow a backslash, but for "x", and the bytes that they stand for.
constexpr std::string_view EscapeLetters = "rntabfve\"\\";
constexpr std::string_view EscapedBytes = "\r\n\t\a\b\f\v\x1B\"\\";

std::string Unquoted(std::string_view text) {
    if (text.size() < 2 || text.front() != '"' || text.back() != '"')
        throw Mistake("expected a text in quotes");
    text = text.substr(1, text.size() - 2);
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char character = text[i];
        if (character < ' ' || character > '~') throw Mistake("write this character as \\xHH");
        if (character == '"') throw Mistake("write a quote inside of a text as \\\"");
        if (character != '\\') {
            bytes += character;
            continue;
        }
        const char letter = ++i < text.size() ? text[i] : '\0';
        const std::size_t known = EscapeLetters.find(letter);
        if (letter == 'x') {
            bytes += ByteOfHex(text.substr(i + 1, 2));
            i += 2;
        } else if (known != std::string_view::npos) {
            bytes += EscapedBytes[known];
        } else {
            throw Mistake("no such escape: one of \\r \\n \\t \\a \\b \\f \\v \\e \\\" \\\\ \\xHH");
        }
    }
    return bytes;
}

// -- The words that a line starts with

void TakeSize(TerminalCase& into, std::string_view rest) {
    if (!into.bytes.empty() || !into.shown.empty())
        throw Mistake("the size stands before what is sent and seen");
    into.rows = TakeNumber(rest, Terminal::MostRows);
    into.columns = TakeNumber(rest, Terminal::MostColumns);
    if (!rest.empty()) throw Mistake("expected two numbers: rows and columns");
}

void TakeText(TerminalCase& into, std::string_view rest) {
    into.bytes += Unquoted(rest);
}

void TakeHex(TerminalCase& into, std::string_view rest) {
    std::string digits(rest);
    std::erase_if(digits, [](char each) { return Blanks.find(each) != std::string_view::npos; });
    for (std::size_t i = 0; i < digits.size(); i += 2)
        into.bytes += ByteOfHex(std::string_view(digits).substr(i, 2));
}

void TakeRow(TerminalCase& into, std::string_view rest) {
    std::string row = Unquoted(rest);
    row.erase(row.find_last_not_of(' ') + 1); // npos + 1 is 0
    if (row.size() > static_cast<std::size_t>(into.columns))
        throw Mistake("the row is longer than the screen's " + std::to_string(into.columns)
                      + " columns");
    if (into.shown.size() == static_cast<std::size_t>(into.rows))
        throw Mistake("the screen has only " + std::to_string(into.rows) + " rows");
    into.shown.push_back(std::move(row));
}

void TakeCursor(TerminalCase& into, std::string_view rest) {
    into.cursorRow = TakeNumber(rest, into.rows);
    into.cursorColumn = TakeNumber(rest, into.columns);
    if (!rest.empty()) throw Mistake("expected two numbers: row and column");
}

struct Word {
    std::string_view word;
    void (*take)(TerminalCase& into, std::string_view rest);
};

constexpr std::array Words{Word{"size", TakeSize}, Word{"send", TakeText}, Word{"hex", TakeHex},
                           Word{"row", TakeRow}, Word{"cursor", TakeCursor}};

/// Reads line by line; a case is complete when the next one starts or the text ends.
class Reader {
  public:
    explicit Reader(std::string_view file) : mFile(file) {}

    void Line(std::string_view line) {
        ++mLine;
        line = Trimmed(line);
        if (line.empty() || line.front() == '#') return;
        try {
            Take(TakeWord(line), line);
        } catch (const Mistake& mistake) {
            mSpoilt = true;
            mRead.mistakes.push_back(Place(mLine) + ": " + mistake.what());
        }
    }

    TerminalCases Done() {
        Finish();
        return std::move(mRead);
    }

  private:
    void Take(std::string_view word, std::string_view rest) {
        if (word == "case") {
            Finish();
            Start(rest);
            return;
        }
        const auto* const found = std::ranges::find(Words, word, &Word::word);
        if (found == Words.end())
            throw Mistake("unknown word \"" + std::string(word)
                          + "\": one of case, size, send, hex, row, cursor");
        if (!mOpen) throw Mistake("the file starts with a case");
        found->take(*mOpen, rest);
    }

    void Start(std::string_view name) {
        mOpen = TerminalCase{
            .name = std::string(name), .where = Place(mLine), .bytes = {}, .shown = {}};
        mSpoilt = false;
        const bool word = !name.empty() && std::ranges::all_of(name, [](char each) {
            return (each >= '0' && each <= '9') || (each >= 'A' && each <= 'Z')
                   || (each >= 'a' && each <= 'z');
        });
        if (!word) throw Mistake("a case has a name of letters and digits");
    }

    void Finish() {
        if (!mOpen) return;
        const TerminalCase done = *std::exchange(mOpen, std::nullopt);
        if (mSpoilt) return; // its mistake is told
        if (done.bytes.empty())
            mRead.mistakes.push_back(done.where + ": the case sends nothing");
        else if (done.cursorRow == 0)
            mRead.mistakes.push_back(done.where + ": the case does not say where the cursor is");
        else
            mRead.cases.push_back(done);
    }

    std::string Place(int line) const { return std::string(mFile) + ":" + std::to_string(line); }

    std::string_view mFile;
    int mLine = 0;
    std::optional<TerminalCase> mOpen;
    bool mSpoilt = false;
    TerminalCases mRead;
};

} // namespace

TerminalCases ReadCases(std::string_view sFile, std::string_view sText) {
    Reader reader(sFile);
    while (!sText.empty()) {
        const std::size_t end = std::min(sText.find('\n'), sText.size());
        reader.Line(sText.substr(0, end));
        sText.remove_prefix(std::min(end + 1, sText.size()));
    }
    return reader.Done();
}

TerminalCases ReadCaseFolder(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".txt") files.push_back(entry.path());
    std::ranges::sort(files);
    TerminalCases all;
    for (const std::filesystem::path& path : files) {
        std::ifstream in(path, std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(in), {}};
        TerminalCases read = ReadCases(path.filename().string(), text);
        std::ranges::move(read.mistakes, std::back_inserter(all.mistakes));
        for (TerminalCase& each : read.cases) {
            const auto first = std::ranges::find(all.cases, each.name, &TerminalCase::name);
            if (first == all.cases.end())
                all.cases.push_back(std::move(each));
            else
                all.mistakes.push_back(each.where + ": " + each.name + " is also a case at "
                                       + first->where);
        }
    }
    return all;
}

} // namespace qncomm::testing
