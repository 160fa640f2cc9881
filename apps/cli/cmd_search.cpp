// cartulon-cli search: the search window's criteria as options, its hit list
// on stdout, sorted as the window's list sorts.
//
//   search [--kind files|folders|both] [--name OP TERM] [--size OP NUMBER]
//          [--attributes TEXT] [--date OP DATE] [--description OP TEXT]
//          [--disc LABEL]...
//
// OP is one of equal, not-equal, contains, not-contains, begins, not-begins,
// ends, not-ends, greater, less. The words are handed to the engine as its
// operator texts, so the engine's rules (which box offers which operator, the
// closing backslash, the disc test) apply unchanged. Without --name the disc
// test still runs, on an empty term with "contains", as in the window.
#include <algorithm>
#include <ostream>

#include "cli.h"
#include "core/catalogue.h"
#include "core/rddll.h"
#include "core/search.h"
#include "platform/walk.h"

namespace ct::cli {

namespace {

const std::array<std::string, 10> kOperatorWords = {
    "equal", "not-equal", "contains", "not-contains", "begins",
    "not-begins", "ends", "not-ends", "greater", "less",
};

class CollectingSink : public HitSink {
public:
    void Add(const std::string& hit) override { hits.push_back(hit); }
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

int RunSearchCommand(Context& ctx) {
    SearchCriteria c;
    c.operatorTexts = kOperatorWords;
    c.noAttributesText = "none";
    c.checkName = false;
    c.nameOperator = "contains";

    const std::string kind = ctx.args.Get("--kind", "both");
    c.kind = kind == "files" ? 0 : kind == "folders" ? 1 : 2;

    for (const auto& [option, values] : ctx.args.pairs) {
        const auto& [op, value] = values;
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
    WalkList folders, files;
    WalkFolder(ctx.dataFolder, folders, files);
    std::vector<std::string> labels = LabelsOf(files);
    std::stable_sort(labels.begin(), labels.end(),
                     [](const std::string& a, const std::string& b) { return ListOrderLess(a, b); });
    const std::vector<std::string> wanted = ctx.args.GetAll("--disc");
    for (const std::string& label : wanted) {
        if (std::find(labels.begin(), labels.end(), label) == labels.end())
            return ctx.Refuse(kNoDisc, {label, ctx.dataFolder});
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
    std::stable_sort(sink.hits.begin(), sink.hits.end(),
                     [](const std::string& a, const std::string& b) { return ListOrderLess(a, b); });
    std::string out;
    for (const std::string& hit : sink.hits) out.append(hit).push_back('\n');
    *ctx.out << out;
    ctx.out->flush();
    if (end == SearchEnd::HitLimit) *ctx.err << "cartulon-cli search: " << TopicText(ctx, kTopicHitLimit) << "\n";
    return sink.hits.empty() ? kNothing : kDone;
}

const std::vector<std::string> kTextOperators = {"equal",  "not-equal",  "contains", "not-contains",
                                                  "begins", "not-begins", "ends",     "not-ends"};
const std::vector<std::string> kNumberOperators = {"equal", "not-equal", "greater", "less"};

Registration reg{{
    .name = "search",
    .summary = {"durchsucht die Datenträger wie das Suchfenster; ein Treffer je Zeile",
                "search the discs as the search window does; one hit a line"},
    .details = {"Alle Kriterien gelten zugleich. Der Name wird ohne Rücksicht auf Groß- und Kleinschreibung "
                "verglichen, bei Dateien mit dem Dateinamen, bei Ordnern mit dem ganzen Pfad; die "
                "Beschreibung genau.\n\n"
                "OP für --name und --description: equal, not-equal, contains, not-contains, begins, "
                "not-begins, ends, not-ends. OP für --size und --date: equal, not-equal, greater, less.",
                "All criteria apply at once. The name is compared without regard to case, for a file its "
                "own name, for a folder its whole path; the description exactly.\n\n"
                "OP for --name and --description: equal, not-equal, contains, not-contains, begins, "
                "not-begins, ends, not-ends. OP for --size and --date: equal, not-equal, greater, less."},
    .options = {
        {"--kind", Takes::Value, "files|folders|both",
         {"was durchsucht wird (Vorgabe: both)", "what to search (default: both)"}, "",
         {"files", "folders", "both"}},
        {"--name", Takes::Pair, "OP TERM", {"der Name", "the name"}, "", kTextOperators},
        {"--size", Takes::Pair, "OP N", {"die Größe in Bytes (nur Dateien)", "the size in bytes (files only)"},
         "", kNumberOperators},
        {"--attributes", Takes::Value, "TEXT|none",
         {"genau diese Attribute, z. B. \"R H\", oder none", "exactly these attributes, e.g. \"R H\", or none"}},
        {"--date", Takes::Pair, "OP DATE", {"das Datum", "the date"}, "", kNumberOperators},
        {"--description", Takes::Pair, "OP TEXT", {"die Beschreibung", "the description"}, "", kTextOperators},
        {"--disc", Takes::Value, "LABEL",
         {"nur diesen Datenträger durchsuchen (mehrfach möglich)", "search only this disc (may repeat)"}},
    },
    .run = &RunSearchCommand,
}};

}  // namespace

}  // namespace ct::cli
