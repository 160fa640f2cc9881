#include "core/adddisc.h"

#include "core/catalogue.h"
#include "core/textrules.h"

namespace ct {

bool LabelInUse(DiscSource& source, const std::string& dataFolder, const std::string& label) {
    // The data folder itself is asked, not any list on screen: re-reading a
    // disc relies on its deleted catalogue no longer counting.
    WalkList folders, files;
    source.WalkFolder(dataFolder, folders, files, {});
    std::string found;
    for (const WalkRecord& f : files)
        if (LabelOfCatalogueName(f.Name, found) && found == label) return true;
    return false;
}

AddOutcome AddDisc(const AddRequest& request, DiscSource& source, FileOps& ops) {
    AddOutcome outcome;
    outcome.label = request.label;
    outcome.description = request.description;

    // Emptiness is judged on the raw text, before cleaning: a label of
    // blanks or of removed characters passes here and ends up empty.
    if (request.label.empty()) {
        outcome.result = AddResult::EmptyLabel;
        return outcome;
    }
    outcome.label = TrimBlanks(CleanLabel(request.label));
    outcome.description = NormaliseDescription(request.description);

    if (LabelInUse(source, request.dataFolder, outcome.label)) {
        outcome.result = AddResult::LabelInUse;
        return outcome;
    }

    // The disc is read whole, and the volume asked, before anything is
    // written.
    WalkList folders, files;
    source.WalkFolder(request.root, folders, files, request.progress);
    VolumeInfo volume;
    source.ReadVolumeInfo(request.root, volume);

    outcome.folders = folders.size();
    outcome.files = files.size();
    outcome.cataloguePath = CataloguePath(request.dataFolder, outcome.label);
    const std::string text =
        CatalogueText(request.root, volume, outcome.description, folders, files);
    if (!WriteWholeFile(ops, outcome.cataloguePath, text, &outcome.error)) {
        outcome.result = AddResult::WriteFailed;
        return outcome;
    }
    outcome.result = AddResult::Added;
    return outcome;
}

}  // namespace ct
