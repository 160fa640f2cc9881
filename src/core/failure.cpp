#include "core/failure.h"

#include <cerrno>
#include <cstring>

namespace ct {

namespace {

struct Wording {
    FailCode code;
    const char* german;
    const char* english;
};

// %1 the file, %2 the second file. Quotes as each language sets them.
constexpr Wording kWordings[] = {
    {FailCode::CreateScratch, "Neben „%1“ kann keine Arbeitsdatei angelegt werden.",
     "Cannot create a scratch file beside \"%1\"."},
    {FailCode::WriteScratch, "Die Arbeitsdatei neben „%1“ kann nicht vollständig geschrieben werden.",
     "Cannot write the scratch file beside \"%1\" completely."},
    {FailCode::Replace, "„%1“ kann nicht durch die neue Fassung ersetzt werden.",
     "Cannot put the new version in place of \"%1\"."},
    {FailCode::Busy, "„%1“ wird gerade von einem anderen Programm geändert.",
     "\"%1\" is being changed by another program."},
    {FailCode::NotFound, "„%1“ gibt es nicht.", "\"%1\" doesn't exist."},
    {FailCode::NotACatalogue, "„%1“ ist keine Katalogdatei.", "\"%1\" is not a catalogue file."},
    {FailCode::Unreadable, "„%1“ kann nicht gelesen werden.", "Cannot read \"%1\"."},
    {FailCode::Copy, "„%1“ kann nicht nach „%2“ kopiert werden.", "Cannot copy \"%1\" to \"%2\"."},
    {FailCode::Remove, "„%1“ kann nicht gelöscht werden.", "Cannot delete \"%1\"."},
    {FailCode::Rename, "„%1“ kann nicht in „%2“ umbenannt werden.", "Cannot rename \"%1\" to \"%2\"."},
    {FailCode::FolderMissing, "Den Ordner „%1“ gibt es nicht.", "The folder \"%1\" doesn't exist."},
    {FailCode::BadLabel, "„%1“ ist keine gültige Bezeichnung.", "\"%1\" is not a valid label."},
    {FailCode::NoDisc, "Es gibt keinen Datenträger „%1“.", "There is no disc \"%1\"."},
    {FailCode::SetAside, "„%1“ kann für das Neueinlesen nicht beiseitegelegt werden; der Katalog bleibt, wie er war.",
     "Cannot set \"%1\" aside for the re-read; the catalogue stays as it was."},
    {FailCode::Cancelled, "Abgebrochen; „%1“ ist unverändert.", "Cancelled; \"%1\" is unchanged."},
    {FailCode::ReadOnly, "„%1“ ist schreibgeschützt und bleibt unverändert.",
     "\"%1\" is read-only and stays unchanged."},
    {FailCode::BadText, "Eine Beschreibung kann keinen Zeilenumbruch enthalten; „%1“ bleibt unverändert.",
     "A description can't hold a line break; \"%1\" stays unchanged."},
    {FailCode::LibraryMissing, "Die Bibliothek „%1“ kann nicht geladen werden.",
     "Cannot load the library \"%1\"."},
};

// The system's reasons a catalogue's file steps meet, in German: the C
// library words them in the locale of the process, which needn't be the
// language the user chose in the program. Others keep the library's words.
struct Reason {
    int number;
    const char* german;
};
constexpr Reason kGermanReasons[] = {
    {EACCES, "Zugriff verweigert"},
    {EPERM, "Vorgang nicht erlaubt"},
    {ENOENT, "Datei oder Ordner nicht gefunden"},
    {ENOSPC, "Kein Platz mehr auf dem Gerät"},
    {EROFS, "Das Dateisystem ist nur lesbar"},
    {EIO, "Ein-/Ausgabefehler"},
    {EEXIST, "Die Datei gibt es schon"},
    {EISDIR, "Ist ein Ordner"},
    {ENOTDIR, "Ist kein Ordner"},
    {ENAMETOOLONG, "Der Dateiname ist zu lang"},
    {EMFILE, "Zu viele offene Dateien"},
    {EBUSY, "Gerät oder Datei ist belegt"},
    {EXDEV, "Verschieben zwischen Dateisystemen nicht möglich"},
};

std::string ReasonText(int number, int language) {
    if (language == 0)
        for (const Reason& r : kGermanReasons)
            if (r.number == number) return r.german;
    return std::strerror(number);
}

// One pass, so that a file name holding "%2" stays as it is.
std::string Fill(const char* pattern, const Failure& f) {
    std::string out;
    for (const char* p = pattern; *p; ++p) {
        if (p[0] == '%' && (p[1] == '1' || p[1] == '2')) {
            out += p[1] == '1' ? f.path : f.other;
            ++p;
        } else {
            out += *p;
        }
    }
    return out;
}

}  // namespace

std::string FailureText(const Failure& failure, int language) {
    std::string text;
    for (const Wording& w : kWordings)
        if (w.code == failure.code) text = Fill(language == 0 ? w.german : w.english, failure);
    if (text.empty()) return {};
    if (failure.sysError != 0) {
        text.pop_back();  // the full stop: the reason follows
        text += " (";
        text += ReasonText(failure.sysError, language);
        text += ").";
    }
    return text;
}

}  // namespace ct
