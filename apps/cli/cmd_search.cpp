// cartulon-cli search: the search window's criteria as options, its hit list
// on stdout, sorted as the window's list sorts.
//
//   search [--kind files|folders|both] [--name OP TERM] [--size OP NUMBER]
//          [--attributes TEXT] [--date OP DATE] [--description OP TEXT]
//          [--disc LABEL]...
//
// OP is one of equal, not-equal, contains, not-contains, begins, not-begins,
// ends, not-ends, greater, less, each one of the engine's operators. Without
// --name the disc test still runs, on an empty term with "contains", as in
// the window.
#include <algorithm>
#include <filesystem>
#include <ostream>

#include "cli.h"
#include "core/catalogue.h"
#include "core/rddll.h"
#include "core/search.h"

namespace ct::cli {

namespace {

const std::array<std::string, 10> kOperatorWords = {
    "equal", "not-equal", "contains", "not-contains", "begins",
    "not-begins", "ends", "not-ends", "greater", "less",
};
constexpr SearchOp kOperators[10] = {SearchOp::Equal,      SearchOp::NotEqual,      SearchOp::Contains,
                                     SearchOp::NotContains, SearchOp::BeginsWith,   SearchOp::NotBeginsWith,
                                     SearchOp::EndsWith,   SearchOp::NotEndsWith,   SearchOp::Greater,
                                     SearchOp::Less};

class CollectingSink : public HitSink {
public:
    bool Add(const std::string& hit) override {
        if (hits.size() >= kHitLimit) return false;
        hits.push_back(hit);
        return true;
    }
    std::size_t Count() const override { return hits.size(); }
    std::vector<std::string> hits;
};

const char* TopicFallback(int topic) {
    switch (topic) {
    case kTopicNoKind: return "choose what to search: --kind files, folders or both";
    case kTopicNoTerm: return "the name needs a search term";
    case kTopicNoSizeOperator: return "the size needs an operator";
    case kTopicNoAttributes: return "choose the attributes";
    case kTopicNoDateOperator: return "the date needs an operator";
    case kTopicNoDescriptionOperator: return "the description needs an operator";
    case kTopicNoSize: return "the size needs a number";
    case kTopicNoDate: return "the date needs a value";
    case kTopicNoDescription: return "the description needs a text";
    case kTopicNoDisc: return "no disc to search";
    case kTopicHitLimit: return "more than 32000 hits; only the first 32000 are listed";
    case kTopicBadDate: return "the date can't be read (dd.mm.yyyy or dd.mm.yyyy hh:mm:ss)";
    default: return "refused";
    }
}

std::string TopicText(const Context& ctx, int topic) {
    std::string text = ResourceText(ctx.programFolder, ctx.language, topic);
    return text.empty() ? TopicFallback(topic) : text;
}

// The labels of the catalogues below the data folder, as the disc list has
// them (every name ending in ".idx" that isn't a folder, in sub-folders too,
// links not followed), from the names alone: the walker's statx and
// attribute look-up for each catalogue would cost a search of many small
// catalogues a third of its time.
std::vector<std::string> CatalogueLabels(const std::string& dataFolder) {
    namespace fs = std::filesystem;
    std::vector<std::string> labels;
    std::error_code ec;
    std::string label;
    for (fs::recursive_directory_iterator it(dataFolder, fs::directory_options::skip_permission_denied, ec), end;
         !ec && it != end; it.increment(ec)) {
        // The type the folder listing gave: no look-up per name.
        if (!it->is_symlink(ec) && it->is_directory(ec)) continue;
        if (LabelOfCatalogueName(it->path().native(), label)) labels.push_back(label);
    }
    return labels;
}

// The operator a word names, None when the option doesn't take it.
SearchOp OperatorOfWord(const std::string& word, bool numeric) {
    const auto at = std::find(kOperatorWords.begin(), kOperatorWords.end(), word);
    if (at == kOperatorWords.end()) return SearchOp::None;
    const auto index = at - kOperatorWords.begin();
    const bool offered = numeric ? (index <= 1 || index >= 8) : index <= 7;
    return offered ? kOperators[index] : SearchOp::None;
}

int RunSearchCommand(Context& ctx) {
    if (!ctx.args.positional.empty()) {
        *ctx.err << "cartulon-cli search: unexpected argument '" << ctx.args.positional.front() << "'\n";
        return kError;
    }
    SearchCriteria c;
    c.noAttributesText = "none";
    c.checkName = false;
    c.nameOperator = SearchOp::Contains;

    const std::string kind = ctx.args.Get("--kind", "both");
    if (kind == "files") c.kind = 0;
    else if (kind == "folders") c.kind = 1;
    else if (kind == "both") c.kind = 2;
    else {
        *ctx.err << "cartulon-cli search: --kind is files, folders or both\n";
        return kError;
    }

    for (const auto& [option, values] : ctx.args.pairs) {
        const auto& [word, value] = values;
        const bool numeric = option == "--size" || option == "--date";
        const SearchOp op = OperatorOfWord(word, numeric);
        if (op == SearchOp::None) {
            *ctx.err << "cartulon-cli search: " << option << " takes "
                     << (numeric ? "equal, not-equal, greater or less"
                                 : "equal, not-equal, contains, not-contains, begins, not-begins, ends or not-ends")
                     << ", not '" << word << "'\n";
            return kError;
        }
        if (option == "--name") {
            c.checkName = true;
            c.nameOperator = op;
            c.nameTerm = value;
        } else if (option == "--size") {
            c.checkSize = c.sizeOperatorChosen = true;
            c.sizeOperator = op;
            c.sizeText = value;
        } else if (option == "--date") {
            c.checkDate = c.dateOperatorChosen = true;
            c.dateOperator = op;
            c.dateText = value;
        } else {
            c.checkDescription = c.descriptionOperatorChosen = true;
            c.descriptionOperator = op;
            c.descriptionText = value;
        }
    }
    for (const std::string& attributes : ctx.args.GetAll("--attributes")) {
        c.checkAttributes = c.attributesChosen = true;
        c.attributes = attributes;
    }

    // The discs as the disc list shows them, all marked unless --disc names some.
    std::vector<std::string> labels = CatalogueLabels(ctx.dataFolder);
    SortForList(labels);
    const std::vector<std::string> wanted = ctx.args.GetAll("--disc");
    for (const std::string& label : wanted) {
        if (std::find(labels.begin(), labels.end(), label) == labels.end()) {
            *ctx.err << "cartulon-cli search: no disc '" << label << "' in " << ctx.dataFolder << "\n";
            return kError;
        }
    }
    for (const std::string& label : labels) {
        const bool marked = wanted.empty() || std::find(wanted.begin(), wanted.end(), label) != wanted.end();
        c.discs.push_back({label, marked});
    }

    if (const int topic = CheckCriteria(c)) {
        *ctx.err << "cartulon-cli search: " << TopicText(ctx, topic) << "\n";
        return kError;
    }

    CollectingSink sink;
    const SearchEnd end = RunSearch(ctx.dataFolder, c, sink);
    SortForList(sink.hits);
    std::string out;
    for (const std::string& hit : sink.hits) out.append(hit).push_back('\n');
    *ctx.out << out;
    ctx.out->flush();
    if (end == SearchEnd::HitLimit) *ctx.err << "cartulon-cli search: " << TopicText(ctx, kTopicHitLimit) << "\n";
    return sink.hits.empty() ? kNothing : kDone;
}

Registration reg{{"search",
                  "search [--kind files|folders|both] [--name OP TERM] [--size OP N] [--attributes TEXT|none] "
                  "[--date OP DATE] [--description OP TEXT] [--disc LABEL]...   OP: equal not-equal contains "
                  "not-contains begins not-begins ends not-ends greater less",
                  {"--kind", "--attributes", "--disc"},
                  &RunSearchCommand},
                 {"--name", "--size", "--date", "--description"}};

}  // namespace

}  // namespace ct::cli
