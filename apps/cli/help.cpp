#include "help.h"

#include <algorithm>
#include <sstream>

#include "core/text.h"

namespace ct::cli {

namespace {

const char* Pick(Tr text, int language) { return language == 0 ? text.de : text.en; }

const std::vector<Option>& CommonOptions() {
    static const std::vector<Option> options = {
        {"--data-folder",
         Takes::Value,
         "DIR",
         {"der Ordner der Kataloge (Vorgabe: der aus CT.ini, sonst Daten/ neben dem Programm)",
          "the folder of the catalogues (default: the one CT.ini names, else Daten/ beside the program)"}},
        {"--help", Takes::Nothing, "", {"diese Hilfe", "this help"}, "-h"},
    };
    return options;
}

const Tr kUsage = {"Aufruf:", "usage:"};
const Tr kOptions = {"Optionen:", "Options:"};
const Tr kCommands = {"Befehle:", "Commands:"};
const Tr kCommonOptions = {"Optionen jedes Befehls:", "Options of every command:"};
const Tr kMore = {"„cartulon-cli help %1“ zeigt die Hilfe dazu.", "\"cartulon-cli help %1\" shows its help."};
const Tr kIntro = {
    "Cartulons Katalog der Sicherungs-Datenträger im Terminal: dieselben Kataloge, Einstellungen und Regeln "
    "wie in den Fenstern des Programms.",
    "Cartulon's catalogue of backup discs in a terminal: the same catalogues, settings and rules as the "
    "program's windows."};
const Tr kVersion = {"die Version (allein angegeben)", "the version (given alone)"};
const Tr kExit = {"Rückgabewert: 0 erledigt oder gefunden, 1 nichts gefunden, 2 Fehler oder abgelehnt.",
                  "Exit status: 0 done or found, 1 nothing found, 2 error or refused."};
const Tr kLanguage = {
    "Die Sprache ist die aus CT.ini; steht dort keine, entscheiden LC_ALL, LC_MESSAGES und LANG (de_DE und "
    "andere mit de: Deutsch, sonst Englisch).",
    "The language is the one CT.ini names; where it names none, LC_ALL, LC_MESSAGES and LANG decide (de_DE "
    "and others beginning with de: German, else English)."};
const Tr kFiles = {
    "cartulon und cartulon-cli arbeiten im Programmordner, in dem sie liegen: CT.ini dort nennt die Sprache "
    "und "
    "den Datenordner (Vorgabe: Daten/ daneben), und jeder Datenträger ist eine Datei BEZEICHNUNG.idx im "
    "Datenordner. Aus dem Paket installiert, geben /usr/bin/cartulon und /usr/bin/cartulon-cli jedem "
    "Benutzer "
    "einen eigenen Programmordner, ~/.local/share/cartulon (oder $XDG_DATA_HOME/cartulon), angelegt beim "
    "ersten Start und nach einem Update erneuert; CT.ini und Daten/ darin werden nie ersetzt. Das Entfernen "
    "des Pakets lässt diesen Ordner stehen; „rm -r ~/.local/share/cartulon“ löscht ihn samt den Katalogen "
    "des Benutzers.",
    "cartulon and cartulon-cli work in the program folder they lie in: CT.ini there names the language and "
    "the data folder (by default Daten/ beside it), and every disc is one file LABEL.idx in the data folder. "
    "Installed from the package, /usr/bin/cartulon and /usr/bin/cartulon-cli give each user a program folder "
    "of their own, ~/.local/share/cartulon (or $XDG_DATA_HOME/cartulon), made at the first start and renewed "
    "after an update; CT.ini and Daten/ in it are never replaced. Removing the package keeps this folder; "
    "\"rm -r ~/.local/share/cartulon\" removes it with the user's catalogues."};
const Tr kGuiName = {"Katalog der Sicherungs-Datenträger", "catalogue of backup discs"};
const Tr kCliName = {"Cartulons Katalog der Datenträger im Terminal",
                     "Cartulon's disc catalogue in a terminal"};
const Tr kGuiText = {
    "Cartulon liest eine CD, DVD oder jeden eingehängten Datenträger einmal ein und legt für ihn eine "
    "Katalogdatei an. Danach lassen sich Datenträger, Ordner und Dateien mit ihren Angaben durchsehen, mit "
    "Beschreibungen versehen und nach Name, Größe, Attributen, Datum und Beschreibung durchsuchen, ohne dass "
    "der Datenträger zur Hand sein muss. Das Programm nimmt keine Argumente; die Sprache, das Laufwerk und "
    "der "
    "Datenordner stehen in CT.ini und werden unter Extras, Optionen eingestellt. Die Hilfe (F1) erklärt "
    "jedes "
    "Fenster.",
    "Cartulon reads a CD, a DVD or any mounted volume once and keeps a catalogue file of it. From then on "
    "the "
    "discs, their folders and files with their details can be browsed, described and searched by name, size, "
    "attributes, date and description, without the disc at hand. The program takes no arguments; the "
    "language, the drive and the data folder stand in CT.ini and are set in the options window. The help "
    "(F1) "
    "explains every window."};

std::string Synopsis(const Option& o, bool shortFirst) {
    std::string s = shortFirst && !o.shortName.empty() ? o.shortName + ", " + o.name : o.name;
    if (!o.metavar.empty()) s += " " + o.metavar;
    return s;
}

// The words of `text` from column `indent` on, wrapped at 79 columns, each
// new line indented the same; no line end behind the last word.
void Wrap(std::ostream& os, const std::string& text, std::size_t indent) {
    std::istringstream words(text);
    std::string word;
    std::size_t column = indent;
    for (bool first = true; words >> word; first = false) {
        if (!first && column + 1 + CharCount(word) > 79) {
            os << "\n" << std::string(indent, ' ');
            column = indent;
        } else if (!first) {
            os << ' ';
            ++column;
        }
        os << word;
        column += CharCount(word);
    }
}

// A two-column list: items indented by 2, texts aligned after the longest
// item (up to a limit), wrapped at 79 columns.
void Columns(std::ostream& os, const std::vector<std::pair<std::string, std::string>>& rows) {
    std::size_t width = 0;
    for (const auto& [item, text] : rows) width = std::max(width, CharCount(item));
    width = std::min<std::size_t>(width, 26);
    for (const auto& [item, text] : rows) {
        os << "  " << item;
        std::size_t column = 2 + CharCount(item);
        if (column > width + 2) {
            os << "\n";
            column = 0;
        }
        os << std::string(width + 4 - column, ' ');
        Wrap(os, text, width + 4);
        os << "\n";
    }
}

void Paragraph(std::ostream& os, std::string_view text) {
    std::istringstream lines{std::string(text)};
    std::string line;
    bool firstLine = true;
    while (std::getline(lines, line)) {
        if (!firstLine) os << "\n";
        if (line.empty()) {  // a blank line in the text: a new paragraph
            os << "\n";
            firstLine = true;
            continue;
        }
        firstLine = false;
        Wrap(os, line, 0);
    }
    os << "\n";
}

std::vector<Command> SortedCommands() {
    std::vector<Command> commands;
    for (const Command& c : Commands())
        if (!c.hidden) commands.push_back(c);
    std::sort(commands.begin(), commands.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return commands;
}

// The command and its options, wrapped at 79 columns under the first word
// after `lead` ("usage: ").
std::string UsageLine(const Command& c, std::string_view lead = "") {
    std::vector<std::string> parts;
    if (!c.arguments.empty()) parts.push_back(c.arguments);
    for (const Option& o : c.options)
        parts.push_back(o.required ? Synopsis(o, false)
                                   : std::string("[").append(Synopsis(o, false)).append("]"));
    std::string line = "cartulon-cli " + c.name;
    const std::size_t indent = CharCount(lead) + line.size() + 1;
    std::size_t column = indent;
    for (const std::string& part : parts) {
        if (column + 1 + CharCount(part) > 79 && column > indent) {
            line.append("\n").append(indent, ' ');
            column = indent;
        } else {
            line += ' ';
            ++column;
        }
        line += part;
        column += CharCount(part);
    }
    return line;
}

// --- roff ----------------------------------------------------------------------

std::string Roff(std::string_view text) {
    std::string out;
    bool lineStart = true;
    for (char ch : text) {
        if (lineStart && (ch == '.' || ch == '\'')) out += "\\&";
        if (ch == '\\')
            out += "\\e";
        else if (ch == '-')
            out += "\\-";
        else
            out += ch;
        lineStart = ch == '\n';
    }
    return out;
}

// Paragraphs of a text as roff: a blank line starts a new one.
std::string RoffParagraphs(std::string_view text) {
    std::string out = Roff(text);
    std::string result;
    std::size_t from = 0;
    while (true) {
        const std::size_t blank = out.find("\n\n", from);
        result += out.substr(from, blank == std::string::npos ? std::string::npos : blank - from);
        if (blank == std::string::npos) break;
        result += "\n.PP\n";
        from = blank + 2;
    }
    return result + "\n";
}

std::string RoffOption(const Option& o, int language) {
    std::string out = ".TP\n\\fB";
    out.append(Roff(o.shortName.empty() ? o.name : o.shortName + ", " + o.name)).append("\\fR");
    if (!o.metavar.empty()) out.append(" \\fI").append(Roff(o.metavar)).append("\\fR");
    return out.append("\n").append(Roff(Pick(o.help, language))).append("\n");
}

std::string ManPage(std::string_view program, int language) {
    std::ostringstream os;
    const bool cli = program == "cartulon-cli";
    std::string upper(program);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char c) { return std::toupper(c); });
    os << ".\\\" Generated by cartulon-cli --man-page; edit the tables in apps/cli instead.\n"
       << ".TH " << Roff(upper) << " 1 \"\" \"Cartulon " << CARTULON_VERSION << "\" \""
       << (language == 0 ? "Benutzerbefehle" : "User Commands") << "\"\n"
       << ".SH " << (language == 0 ? "NAME" : "NAME") << "\n"
       << Roff(program) << " \\- " << Roff(Pick(cli ? kCliName : kGuiName, language)) << "\n"
       << ".SH " << (language == 0 ? "ÜBERSICHT" : "SYNOPSIS") << "\n";
    if (!cli) {
        os << ".B cartulon\n"
           << ".SH " << (language == 0 ? "BESCHREIBUNG" : "DESCRIPTION") << "\n"
           << RoffParagraphs(Pick(kGuiText, language));
    } else {
        for (const Command& c : SortedCommands()) {
            os << ".B cartulon\\-cli " << Roff(c.name) << "\n";
            if (!c.arguments.empty()) os << ".I " << Roff(c.arguments) << "\n";
            os << (language == 0 ? "[\\fIOptionen\\fR]" : "[\\fIoptions\\fR]") << "\n.br\n";
        }
        os << ".B cartulon\\-cli \\-\\-version\n"
           << ".SH " << (language == 0 ? "BESCHREIBUNG" : "DESCRIPTION") << "\n"
           << RoffParagraphs(Pick(kIntro, language)) << ".PP\n"
           << RoffParagraphs(Pick(kLanguage, language)) << ".SH " << (language == 0 ? "BEFEHLE" : "COMMANDS")
           << "\n";
        for (const Command& c : SortedCommands()) {
            os << ".SS " << Roff(c.name + (c.arguments.empty() ? "" : " " + c.arguments)) << "\n"
               << RoffParagraphs(Pick(c.summary, language));
            if (*Pick(c.details, language)) os << ".PP\n" << RoffParagraphs(Pick(c.details, language));
            for (const Option& o : c.options) os << RoffOption(o, language);
        }
        os << ".SH " << (language == 0 ? "OPTIONEN JEDES BEFEHLS" : "OPTIONS OF EVERY COMMAND") << "\n";
        for (const Option& o : CommonOptions()) os << RoffOption(o, language);
        os << RoffOption({"--version", Takes::Nothing, "", kVersion, "-V"}, language) << ".SH "
           << (language == 0 ? "RÜCKGABEWERT" : "EXIT STATUS") << "\n"
           << RoffParagraphs(Pick(kExit, language));
    }
    os << ".SH " << (language == 0 ? "DATEIEN" : "FILES") << "\n"
       << RoffParagraphs(Pick(kFiles, language)) << ".SH " << (language == 0 ? "SIEHE AUCH" : "SEE ALSO")
       << "\n"
       << (cli ? ".BR cartulon (1)\n" : ".BR cartulon\\-cli (1)\n");
    return os.str();
}

// --- bash completion --------------------------------------------------------------

std::string Completion() {
    std::ostringstream os;
    os << "# bash completion for cartulon-cli; generated by cartulon-cli --bash-completion.\n"
       << "_cartulon_cli_labels() {\n"
       << "    local IFS=$'\\n'\n"
       << "    COMPREPLY=($(compgen -W \"$(cartulon-cli list 2>/dev/null)\" -- \"$1\"))\n"
       << "}\n"
       << "_cartulon_cli() {\n"
       << "    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}\n"
       << "    if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
       << "        COMPREPLY=($(compgen -W \"";
    for (const Command& c : SortedCommands()) os << c.name << " ";
    os << "help --version --help\" -- \"$cur\"))\n"
       << "        return\n"
       << "    fi\n"
       << "    local options= argument=\n"
       << "    case ${COMP_WORDS[1]} in\n"
       << "        help) COMPREPLY=($(compgen -W \"";
    for (const Command& c : SortedCommands()) os << c.name << " ";
    os << "\" -- \"$cur\")); return ;;\n";
    for (const Command& c : SortedCommands()) {
        os << "        " << c.name << ") options=\"";
        for (const Option& o : AllOptions(c))
            os << o.name << " " << (o.shortName.empty() ? "" : o.shortName + " ");
        os << "\"; argument=\"" << c.arguments << "\" ;;\n";
    }
    os << "    esac\n"
       << "    case \"${COMP_WORDS[1]} $prev\" in\n";
    for (const Command& c : SortedCommands()) {
        for (const Option& o : c.options) {
            if (o.takes == Takes::Nothing) continue;
            os << "        \"" << c.name << " " << o.name << "\") ";
            if (!o.choices.empty()) {
                os << "COMPREPLY=($(compgen -W \"";
                for (const std::string& w : o.choices) os << w << " ";
                os << "\" -- \"$cur\")); return ;;\n";
            } else if (o.metavar == "LABEL") {
                os << "_cartulon_cli_labels \"$cur\"; return ;;\n";
            } else if (o.metavar == "DIR") {
                os << "COMPREPLY=($(compgen -d -- \"$cur\")); return ;;\n";
            } else {  // free text: nothing to offer
                os << "COMPREPLY=(); return ;;\n";
            }
        }
    }
    os << "        *\" --data-folder\") COMPREPLY=($(compgen -d -- \"$cur\")); return ;;\n"
       << "    esac\n"
       << "    if [[ $cur == -* ]]; then\n"
       << "        COMPREPLY=($(compgen -W \"$options\" -- \"$cur\"))\n"
       << "    elif [[ $argument == LABEL* || $argument == OLD* ]] && [ \"$COMP_CWORD\" -eq 2 ]; then\n"
       << "        _cartulon_cli_labels \"$cur\"\n"
       << "    else\n"
       << "        COMPREPLY=($(compgen -f -- \"$cur\"))\n"
       << "    fi\n"
       << "}\n"
       << "complete -o filenames -F _cartulon_cli cartulon-cli\n";
    return os.str();
}

}  // namespace

std::string Fill(std::string_view pattern, std::initializer_list<std::string_view> fill) {
    std::string out;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const char next = i + 1 < pattern.size() ? pattern[i + 1] : '\0';
        if (pattern[i] == '%' && next >= '1' && next <= '9' &&
            static_cast<std::size_t>(next - '1') < fill.size()) {
            out += fill.begin()[next - '1'];
            ++i;
        } else {
            out += pattern[i];
        }
    }
    return out;
}

std::vector<Option> AllOptions(const Command& command) {
    std::vector<Option> all = command.options;
    all.insert(all.end(), CommonOptions().begin(), CommonOptions().end());
    return all;
}

std::string UsageText(const Command& command, int language) {
    const std::string lead = std::string(Pick(kUsage, language)) + " ";
    return lead + UsageLine(command, lead) + "\n" + Fill(Pick(kMore, language), {command.name}) + "\n";
}

std::string GeneralHelp(int language) {
    std::ostringstream os;
    os << Pick(kUsage, language) << " cartulon-cli "
       << (language == 0 ? "BEFEHL [ARGUMENTE] [OPTIONEN]" : "COMMAND [ARGUMENTS] [OPTIONS]") << "\n\n";
    Paragraph(os, Pick(kIntro, language));
    os << "\n" << Pick(kCommands, language) << "\n";
    std::vector<std::pair<std::string, std::string>> rows;
    for (const Command& c : SortedCommands()) rows.emplace_back(c.name, Pick(c.summary, language));
    Columns(os, rows);
    os << "\n" << Pick(kCommonOptions, language) << "\n";
    rows.clear();
    for (const Option& o : CommonOptions()) rows.emplace_back(Synopsis(o, true), Pick(o.help, language));
    rows.emplace_back("-V, --version", Pick(kVersion, language));
    Columns(os, rows);
    os << "\n";
    Paragraph(os, Pick(kExit, language));
    Paragraph(os, Fill(Pick(kMore, language), {language == 0 ? "BEFEHL" : "COMMAND"}));
    return os.str();
}

std::string CommandHelp(const Command& command, int language) {
    std::ostringstream os;
    const std::string lead = std::string(Pick(kUsage, language)) + " ";
    os << lead << UsageLine(command, lead) << "\n\n";
    Paragraph(os, Pick(command.summary, language));
    if (*Pick(command.details, language)) {
        os << "\n";
        Paragraph(os, Pick(command.details, language));
    }
    os << "\n" << Pick(kOptions, language) << "\n";
    std::vector<std::pair<std::string, std::string>> rows;
    for (const Option& o : AllOptions(command)) rows.emplace_back(Synopsis(o, true), Pick(o.help, language));
    Columns(os, rows);
    os << "\n";
    Paragraph(os, Pick(kExit, language));
    return os.str();
}

int HiddenOutput(const Context& ctx, int argc, char** argv) {
    const std::string_view what = argv[0];
    if (what == "--bash-completion") {
        *ctx.out << Completion();
        return kDone;
    }
    if (what != "--man-page") return -1;
    const std::string_view program = argc > 1 ? argv[1] : "";
    const std::string_view language = argc > 2 ? argv[2] : "";
    if ((program != "cartulon" && program != "cartulon-cli") || (language != "de" && language != "en")) {
        *ctx.err << "cartulon-cli: --man-page cartulon|cartulon-cli de|en\n";
        return kError;
    }
    *ctx.out << ManPage(program, language == "de" ? 0 : 10000);
    return kDone;
}

}  // namespace ct::cli
