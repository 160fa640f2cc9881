// cartulon-cli search: the search window's criteria as options, its hit list
// on stdout, sorted as the window's list sorts.
//
// Each operator word names one of the engine's operators, so the engine's
// rules (which test takes which operator, the closing backslash, the disc
// test) apply unchanged. What differs from the window is which discs
// count as hits: the window lists every disc whose label or description holds
// the (maybe empty) name term, so a search for large files also lists the
// whole collection. Here a disc is a hit only where a term can say something
// about it: with --name (the engine's disc test) or --description (the disc's
// own description), and no size, date or attribute criterion, which no disc
// has; or with --kind discs, which lists nothing else.
#include <algorithm>
#include <ostream>

#include "cli.h"
#include "core/catalogue.h"
#include "core/collate.h"
#include "core/rddll.h"
#include "core/search.h"
#include "output.h"
#include "platform/walk.h"

namespace ct::cli {

namespace {

// In the order core's TextOperator and NumberOperator read them; the option
// parser lets through only the words an option takes.
const std::array<std::string, 10> kOperatorWords = {
    "equal",      "not-equal", "contains", "not-contains", "begins",
    "not-begins", "ends",      "not-ends", "greater",      "less",
};

const Tr kSizeExpected = {
    "%1 nimmt eine Zahl von Bytes, auch mit K, M, G oder T für Potenzen von 1024 (100K, 5M, 2G), nicht „%2“",
    "%1 takes a number of bytes, or with K, M, G or T for powers of 1024 (100K, 5M, 2G), not '%2'"};
const Tr kDateExpected = {
    "--date nimmt ein Datum als TT.MM.JJJJ [hh:mm[:ss]] oder JJJJ-MM-TT [hh:mm[:ss]], nicht „%1“",
    "--date takes a date as dd.mm.yyyy [hh:mm[:ss]] or yyyy-mm-dd [hh:mm[:ss]], not '%1'"};

struct DiscRule {
    bool listDiscs = false;   // disc hits are wanted at all
    bool onlyDiscs = false;   // --kind discs
    bool byName = false;      // the engine's disc test applies
    SearchOp descriptionOp = SearchOp::None;
    std::string descriptionText;
};

// Keeps the hits the command line asked for; the engine's count of hits, and
// so its limit, sees only those: the sink ends the run at kHitLimit of them.
class CollectingSink : public HitSink {
public:
    CollectingSink(const std::string& dataFolder, const DiscRule& rule) : dataFolder_(dataFolder), rule_(rule) {}
    bool Add(const std::string& hit) override {
        const bool disc = hit.find('\\') == std::string::npos;
        if (disc ? !KeepDisc(hit) : rule_.onlyDiscs) return true;
        if (hits.size() >= kHitLimit) return false;
        hits.push_back(hit);
        return true;
    }
    std::size_t Count() const override { return hits.size(); }
    std::vector<std::string> hits;

private:
    bool KeepDisc(const std::string& label) const {
        if (!rule_.listDiscs) return false;
        if (rule_.descriptionOp == SearchOp::None) return true;
        CatalogueReader reader(CataloguePath(dataFolder_, label));
        const std::string& header = reader.HeaderLine();
        const std::size_t bar = header.rfind('|');
        return bar != std::string::npos &&
               CompareText(rule_.descriptionOp, std::string_view(header).substr(bar + 1), rule_.descriptionText);
    }
    const std::string& dataFolder_;
    const DiscRule& rule_;
};

const Tr TopicFallback(int topic) {
    switch (topic) {
    case kTopicNoTerm: return {"der Name braucht einen Suchbegriff", "the name needs a search term"};
    case kTopicNoSize: return {"die Größe braucht eine Zahl", "the size needs a number"};
    case kTopicNoDate: return {"das Datum braucht einen Wert", "the date needs a value"};
    case kTopicNoDescription: return {"die Beschreibung braucht einen Text", "the description needs a text"};
    case kTopicNoDisc: return {"kein Datenträger zu durchsuchen", "no disc to search"};
    case kTopicHitLimit:
        return {"mehr als 32000 Treffer; nur die ersten 32000 sind aufgeführt",
                "more than 32000 hits; only the first 32000 are listed"};
    default: return {"abgelehnt", "refused"};
    }
}

std::string TopicText(const Context& ctx, int topic) {
    std::string text = ResourceText(ctx.programFolder, ctx.language, topic);
    return text.empty() ? ctx.T(TopicFallback(topic)) : text;
}

// label, kind and path of a hit text: "L" a disc, "L\\P\" a folder, "L\\P" a file.
struct Hit {
    std::string label, kind, path;
};
Hit SplitHit(const std::string& hit) {
    const std::size_t cut = hit.find('\\');
    if (cut == std::string::npos) return {hit, "disc", ""};
    std::string path = hit.substr(cut + 1);
    const bool folder = path.size() > 1 && path.back() == '\\';
    if (folder) path.pop_back();
    return {hit.substr(0, cut), folder ? "folder" : "file", path};
}

void PrintHits(const Context& ctx, const std::vector<std::string>& hits) {
    if (ctx.args.Has("--null")) {
        // With --slashes one path, LABEL/PATH, in place of the hit's "\\".
        for (const std::string& text : hits) {
            if (ctx.OutputGone()) return;
            const Hit hit = SplitHit(text);
            if (!ctx.args.Has("--slashes") || hit.kind == "disc") *ctx.out << Value(ctx, text, true) << '\0';
            else *ctx.out << Value(ctx, hit.label + hit.path + (hit.kind == "folder" ? "/" : ""), true) << '\0';
        }
        return;
    }
    if (FormatOf(ctx) == Format::Text) {
        std::string out;
        for (const std::string& hit : hits) out.append(hit).push_back('\n');
        *ctx.out << out;
        return;
    }
    Records records(ctx, {{"kind"}, {"label"}, {"path"}});
    for (const std::string& text : hits) {
        if (ctx.OutputGone()) return;
        const Hit hit = SplitHit(text);
        records.Add({hit.kind, Value(ctx, hit.label), Value(ctx, hit.path, true)});
    }
}

int RunSearchCommand(Context& ctx) {
    SearchCriteria c;
    c.noAttributesText = "none";
    c.checkName = false;
    c.nameOperator = SearchOp::Contains;

    const std::string kind = ctx.args.Get("--kind", "both");
    c.kind = kind == "files" ? 0 : kind == "folders" ? 1 : 2;
    DiscRule rule;
    rule.onlyDiscs = kind == "discs";

    for (const auto& [option, values] : ctx.args.pairs) {
        const auto& [word, value] = values;
        const bool number = option == "--size" || option == "--date";
        const SearchOp op =
            number ? NumberOperator(kOperatorWords, word) : TextOperator(kOperatorWords, word);
        if (option == "--name") {
            c.checkName = true;
            c.nameOperator = op;
            c.nameTerm = value;
            rule.byName = true;
        } else if (option == "--size") {
            c.checkSize = c.sizeOperatorChosen = true;
            c.sizeOperator = op;
            if (!ParseSize(value, c.sizeText)) return ctx.Refuse(kSizeExpected, {option, value});
        } else if (option == "--date") {
            c.checkDate = c.dateOperatorChosen = true;
            c.dateOperator = op;
            if (!ParseDate(value, c.dateText)) return ctx.Refuse(kDateExpected, {value});
        } else {
            c.checkDescription = c.descriptionOperatorChosen = true;
            c.descriptionOperator = op;
            c.descriptionText = value;
            rule.descriptionOp = op;
            rule.descriptionText = value;
        }
    }
    for (const std::string& attributes : ctx.args.GetAll("--attributes")) {
        c.checkAttributes = c.attributesChosen = true;
        c.attributes = attributes;
    }
    const bool discless = c.checkSize || c.checkDate || c.checkAttributes;
    if (rule.onlyDiscs && discless)
        return ctx.Refuse({"--size, --date und --attributes gelten für Dateien und Ordner, nicht für Datenträger",
                           "--size, --date and --attributes apply to files and folders, not to discs"});
    rule.listDiscs = rule.onlyDiscs || ((rule.byName || rule.descriptionOp != SearchOp::None) && !discless);

    // The discs as the disc list shows them, all marked unless --disc names some.
    std::vector<std::string> labels = CatalogueLabels(ctx.dataFolder);
    SortForList(labels);
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
        if (topic == kTopicNoDisc) return kNothing;  // an empty collection has nothing to find
        return ctx.Refuse({"%1", "%1"}, {TopicText(ctx, topic)});
    }

    CollectingSink sink(ctx.dataFolder, rule);
    SearchEnd end = SearchEnd::Normal;
    if (rule.onlyDiscs) {  // the first line of each catalogue is all a disc test reads
        Matcher matcher(c);
        for (const SearchDisc& disc : c.discs) {
            CatalogueReader reader(CataloguePath(ctx.dataFolder, disc.label));
            if (disc.marked && matcher.TestDisc(disc.label, reader.HeaderLine())) sink.Add(disc.label);
        }
    } else {
        end = RunSearch(ctx.dataFolder, c, sink);
    }
    SortForList(sink.hits);  // keys folded once, not in every comparison
    PrintHits(ctx, sink.hits);
    ctx.out->flush();
    if (end == SearchEnd::HitLimit) ctx.Refuse({"%1", "%1"}, {TopicText(ctx, kTopicHitLimit)});
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
                "not-begins, ends, not-ends. OP für --size und --date: equal, not-equal, greater, less.\n\n"
                "Datenträger sind Treffer, wenn --name oder --description auf Bezeichnung oder Beschreibung "
                "passt und kein Kriterium für Größe, Datum oder Attribute gesetzt ist, oder mit --kind "
                "discs. Ein Treffer lautet BEZEICHNUNG, BEZEICHNUNG\\PFAD\\ (Ordner) oder "
                "BEZEICHNUNG\\PFAD (Datei); tsv und json geben kind, label und path.",
                "All criteria apply at once. The name is compared without regard to case, for a file its "
                "own name, for a folder its whole path; the description exactly.\n\n"
                "OP for --name and --description: equal, not-equal, contains, not-contains, begins, "
                "not-begins, ends, not-ends. OP for --size and --date: equal, not-equal, greater, less.\n\n"
                "Discs are hits where --name or --description matches their label or description and no "
                "size, date or attribute criterion is set, or with --kind discs. A hit reads LABEL, "
                "LABEL\\PATH\\ (a folder) or LABEL\\PATH (a file); tsv and json give kind, label and "
                "path."},
    .options = {
        {"--kind", Takes::Value, "files|folders|both|discs",
         {"was durchsucht wird (Vorgabe: both, Dateien und Ordner)",
          "what to search (default: both, files and folders)"}, "",
         {"files", "folders", "both", "discs"}},
        {"--name", Takes::Pair, "OP TERM", {"der Name", "the name"}, "", kTextOperators},
        {"--size", Takes::Pair, "OP SIZE",
         {"die Größe (nur Dateien) in Bytes, oder mit K, M, G, T für Potenzen von 1024: 100K, 1.5M, 2G",
          "the size (files only) in bytes, or with K, M, G, T for powers of 1024: 100K, 1.5M, 2G"},
         "", kNumberOperators},
        {"--attributes", Takes::Value, "TEXT|none",
         {"genau diese Attribute, z. B. \"R H\", oder none", "exactly these attributes, e.g. \"R H\", or none"}},
        {"--date", Takes::Pair, "OP DATE",
         {"das Datum als TT.MM.JJJJ [hh:mm[:ss]] oder JJJJ-MM-TT [hh:mm[:ss]]; ohne Uhrzeit 00:00:00",
          "the date as dd.mm.yyyy [hh:mm[:ss]] or yyyy-mm-dd [hh:mm[:ss]]; without a time 00:00:00"}, "", kNumberOperators},
        {"--description", Takes::Pair, "OP TEXT", {"die Beschreibung", "the description"}, "", kTextOperators},
        {"--disc", Takes::Value, "LABEL",
         {"nur diesen Datenträger durchsuchen (mehrfach möglich)", "search only this disc (may repeat)"}},
        kFormatOption, kSlashesOption, kNullOption,
    },
    .run = &RunSearchCommand,
}};

}  // namespace

}  // namespace ct::cli
