// Makes the tables of characters between Big5 and GB 2312 from ICU's converters and transliterators:
//   make_tables DIRECTORY            writes them there
//   make_tables --check DIRECTORY    says whether those there are the same; gives 77 where they cannot be, as
//   this
//                                    ICU is older than the one that they were made with
//
// A Big5 character goes to itself where GB 2312 has it, else to its simplified form, and a symbol of the rows
// A1 to A3 to the nearest one. On the way back a character in common use stays itself, and any other becomes
// its usual traditional form. The rare characters of Big5 (its level 2) are full of variants that nobody
// writes today: one that would not come back from its simplified form has no counterpart.

#include <unicode/translit.h>
#include <unicode/ucnv.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using code = unsigned; // lead byte and trail byte
using code_map = std::map<code, code>;

void require(bool holds, const std::string &what) {
    if (holds)
        return;
    std::cerr << "make_tables: " << what << '\n';
    std::exit(1);
}

constexpr int release_of_tables = 72; // ICU 67 has another way back for a character
constexpr code first_lead = 0xA1;

code lead_of(code pair) {
    return pair >> 8;
}

code trail_of(code pair) {
    return pair & 0xFF;
}

// A double-byte charset of leads from 0xA1 on, as ICU knows it. A private-use cell holds no character.
class charset {
public:
    charset(const char *name, code last_lead) {
        UErrorCode status = U_ZERO_ERROR;
        cnv_.reset(ucnv_open(name, &status));
        ucnv_setToUCallBack(cnv_.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
        ucnv_setFromUCallBack(cnv_.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
        require(U_SUCCESS(status), std::string("no converter for ") + name);
        for (code lead = first_lead; lead <= last_lead; ++lead)
            for (code trail = 0x40; trail <= 0xFE; ++trail)
                if (const std::optional<char16_t> character = decode(lead, trail))
                    characters_[lead << 8 | trail] = *character;
    }

    const std::map<code, char16_t> &characters() const { return characters_; }

    // Of two cells for one character, the one that ICU writes.
    std::optional<code> find(char16_t character) const {
        UErrorCode status = U_ZERO_ERROR;
        unsigned char pair[4];
        const auto bytes =
            ucnv_fromUChars(cnv_.get(), reinterpret_cast<char *>(pair), sizeof pair, &character, 1, &status);
        const code found = static_cast<code>(pair[0] << 8 | pair[1]);
        if (U_FAILURE(status) || bytes != 2 || !characters_.count(found))
            return {};
        return found;
    }

    code first_of(char16_t character) const {
        const auto found = std::find_if(characters_.begin(), characters_.end(),
                                        [=](const auto &cell) { return cell.second == character; });
        require(found != characters_.end(), "a fold names a symbol that its charset lacks");
        return found->first;
    }

private:
    std::optional<char16_t> decode(code lead, code trail) const {
        UErrorCode status = U_ZERO_ERROR;
        const char pair[] = {static_cast<char>(lead), static_cast<char>(trail)};
        char16_t units[4];
        const auto length = ucnv_toUChars(cnv_.get(), units, 4, pair, sizeof pair, &status);
        const bool assigned = U_SUCCESS(status) && length == 1 && (units[0] < 0xE000 || units[0] > 0xF8FF);
        return assigned ? std::optional(units[0]) : std::nullopt;
    }

    struct closing {
        void operator()(UConverter *cnv) const { ucnv_close(cnv); }
    };

    std::unique_ptr<UConverter, closing> cnv_;
    std::map<code, char16_t> characters_;
};

// Characters one by one, without the context of a word.
class folding {
public:
    explicit folding(const char *id) {
        UErrorCode status = U_ZERO_ERROR;
        transliterator_.reset(icu::Transliterator::createInstance(id, UTRANS_FORWARD, status));
        require(U_SUCCESS(status), std::string("no transliterator ") + id);
    }

    char16_t operator()(char16_t character) const {
        icu::UnicodeString text(character);
        transliterator_->transliterate(text);
        return text.length() == 1 ? text[0] : character;
    }

private:
    std::unique_ptr<icu::Transliterator> transliterator_;
};

// By the nearest symbol of GB 2312. Of several that go to one symbol that Big5 lacks, the first is the way
// back.
struct symbol_folds {
    std::u16string_view big5;
    std::u16string_view gb;
};

constexpr symbol_folds folds[] = {
    {u"︵︶︷︸︹︺︻︼︽︾︿﹀﹁﹂﹃﹄", u"（）｛｝〔〕【】《》〈〉「」『』"}, // for vertical text
    {u"﹙﹚﹛﹜﹝﹞", u"（）｛｝〔〕"},                                         // small forms
    {u"﹐﹑﹒﹔﹕﹖﹗﹟﹠﹡﹢﹣﹤﹥﹦﹨﹩﹪﹫", u"，、．；：？！＃＆＊＋－＜＞＝＼＄％＠"},
    {u"‧︰‥·˙", u"．∶…・・"},                                // dots
    {u"—–︱", u"―――"},                                       // dashes
    {u"︳︴╴﹏ˍ﹍﹎¯﹉﹊﹋﹌", u"＿＿＿＿＿＿＿￣￣￣￣￣"}, // lines below and above
    {u"〝〞‵ˋˊ", u"“”｀｀′"},                                // quotes and tone marks
    {u"≦≧≒∣∕", u"≤≥≈｜／"},                                  // mathematics
    {u"╭╮╰╯═╞╪╡╱╲╳", u"┌┐└┘━┝┿┥／＼×"},                      // frames
    {u"卄", u"廿"},                                          // twenty
};

constexpr code first_rare = 0xC940;
constexpr code last_rare = 0xF9D5;

struct tables {
    code_map big5_to_gb;
    code_map gb_to_big5;
};

class table_maker {
public:
    tables make() {
        for (const symbol_folds &row : folds)
            for (std::size_t i = 0; i < row.big5.size(); ++i)
                add(big5_.first_of(row.big5[i]), gb_.first_of(row.gb[i]));
        for (const auto &[pair, character] : big5_.characters())
            if (const std::optional<code> target = simplify(character))
                add(pair, *target);
        for (const auto &[pair, character] : gb_.characters())
            if (const std::optional<code> target = choose_traditional(pair, character))
                result_.gb_to_big5[pair] = *target;
        drop_rare_variants();
        return result_;
    }

private:
    void add(code pair, code target) {
        result_.big5_to_gb[pair] = target;
        sources_[target].push_back(pair);
    }

    std::optional<code> simplify(char16_t character) const {
        const std::optional<code> itself = gb_.find(character);
        return itself ? itself : gb_.find(to_simplified_(character));
    }

    std::optional<code> choose_traditional(code pair, char16_t character) {
        const std::optional<code> itself = big5_.find(character);
        if (itself && *itself < first_rare)
            return itself;
        const std::optional<code> usual = big5_.find(to_traditional_(character));
        const std::vector<code> &sources = sources_[pair];
        if (sources.empty() || std::count(sources.begin(), sources.end(), usual.value_or(0)))
            return usual;
        return sources.front();
    }

    void drop_rare_variants() {
        std::erase_if(result_.big5_to_gb, [this](const code_map::value_type &cell) {
            const auto [pair, target] = cell;
            const bool rare = pair >= first_rare && pair <= last_rare;
            const bool itself = big5_.characters().at(pair) == gb_.characters().at(target);
            return rare && !itself && result_.gb_to_big5.at(target) != pair;
        });
    }

    charset big5_{"Big5", 0xF9};
    charset gb_{"GB2312", 0xF7};
    folding to_simplified_{"Traditional-Simplified"};
    folding to_traditional_{"Simplified-Traditional"};
    std::map<code, std::vector<code>> sources_;
    tables result_;
};

struct layout {
    const char *file;
    const char *name;
    const char *purpose;
    std::size_t columns; // of a row, which is what one lead has
    std::size_t cells;
    std::size_t (*column_of)(code trail);
    const char *rows; // what the library spreads it into
};

constexpr layout big5_layout = {
    "big5_to_gb2312.cpp",
    "B2G",
    "Big5 to GB 2312: a row for each lead, in it the trails from 0x40 to 0x7E, then those from 0xA1 to 0xFE.",
    158,
    14060,
    [](code trail) -> std::size_t { return trail <= 0x7E ? trail - 0x40 : trail - 0x62; },
    "gb_of_big5 = map_of(B2G, big5_index)",
};

constexpr layout gb_layout = {
    "gb2312_to_big5.cpp",
    "G2B",
    "GB 2312 to Big5: a row for each lead, in it the trails from 0xA1 to 0xFE.",
    94,
    8178,
    [](code trail) -> std::size_t { return trail - 0xA1; },
    "big5_of_gb = map_of(G2B, gb_index)",
};

std::vector<code> fill(const layout &form, const code_map &map) {
    std::vector<code> cells(form.cells);
    for (const auto &[pair, target] : map)
        cells.at((lead_of(pair) - first_lead) * form.columns + form.column_of(trail_of(pair))) = target;
    return cells;
}

constexpr std::size_t cells_a_line = 16;

void write_cell(std::ostream &text, code cell) {
    if (cell)
        text << "{0x" << lead_of(cell) << ",0x" << trail_of(cell) << "},";
    else
        text << "{0,0},";
}

std::string source_text(const layout &form, const code_map &map) {
    std::ostringstream text;
    text << "// " << form.purpose << "\n// A cell of zeros is a character without counterpart.\n//\n"
         << "// Made by tools/make_tables.cpp; script/tables makes it anew.\n\n"
         << "#include \"cell_map.h\"\n#include \"zel.h\"\n\n"
         << "// clang-format off\nconstexpr unsigned char " << form.name << "[" << form.cells << "][2] = {"
         << std::hex << std::uppercase;
    const std::vector<code> cells = fill(form, map);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const std::size_t column = i % form.columns;
        if (column == 0)
            text << "\n    // " << first_lead + i / form.columns;
        if (column % cells_a_line == 0)
            text << "\n    ";
        write_cell(text, cells[i]);
    }
    text << "\n};\n// clang-format on\n\nconstinit const zel::cell_map zel::" << form.rows << ";\n";
    return text.str();
}

std::string content_of(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void write(const std::string &path, const std::string &text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    require(file.flush().good(), "cannot write " + path);
}

void report(const tables &made) {
    std::set<code> reached;
    for (const auto &[pair, target] : made.big5_to_gb)
        reached.insert(target);
    const auto inverses =
        std::count_if(made.gb_to_big5.begin(), made.gb_to_big5.end(), [&](const auto &cell) {
            const auto back = made.big5_to_gb.find(cell.second);
            return back != made.big5_to_gb.end() && back->second == cell.first;
        });
    std::cout << "Big5 to GB 2312: " << made.big5_to_gb.size() << " characters to " << reached.size()
              << "\nGB 2312 to Big5: " << made.gb_to_big5.size() << " characters, " << inverses
              << " of them exact inverses\n";
}

} // namespace

int main(int argc, char **argv) {
    const bool check = argc == 3 && std::string_view(argv[1]) == "--check";
    require(check || argc == 2, "usage: make_tables [--check] DIRECTORY");
    const std::string directory = std::string(argv[argc - 1]) + '/';
    const tables made = table_maker().make();
    for (const auto &[form, map] :
         {std::pair(big5_layout, made.big5_to_gb), std::pair(gb_layout, made.gb_to_big5)}) {
        const std::string path = directory + form.file;
        const std::string text = source_text(form, map);
        if (!check)
            write(path, text);
        else if (content_of(path) != text && U_ICU_VERSION_MAJOR_NUM < release_of_tables) {
            std::cerr << "skipped: the tables are those of ICU " << release_of_tables << '\n';
            return 77;
        } else
            require(content_of(path) == text, path + " is not what this ICU gives");
    }
    report(made);
}
