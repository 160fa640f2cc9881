// A catalogue that can't be read (no read permission, an I/O error) is
// reported as unreadable with the system's reason, never as "no disc" or as a
// disc without folders: the terminal tool's show and describe take the label
// through ResolveLabel, the main window counts through CountCatalogue.
#include <gtest/gtest.h>

#include <cerrno>

#include "core/catalogue.h"
#include "core/editing.h"
#include "core/fileops.h"
#include "support/openers.h"
#include "support/scratch.h"

namespace {

// Root reads every file; the opener plays the system's refusal.
ct::ReadFile Deny(const std::string& path, ct::Failure* failure, std::uint64_t*) {
    if (failure) *failure = ct::Fail(ct::FailCode::Unreadable, path, EACCES);
    return nullptr;
}

TEST(Unreadable, SaidSoWithTheReasonInBothLanguages) {
    ct::test::Scratch dir;
    const std::string data = dir.Mkdir("data");
    dir.Write("data/Geheim.idx", "1|2|CDFS|3|1|2048|x\r\n\r\n\\A|R||\r\n\r\n");
    std::string path;
    ct::Failure resolved;
    ct::CatalogueCounts counts;
    {
        const ct::test::ReadOpenerScope deny(&Deny);
        resolved = ct::ResolveLabel(data, "Geheim", path);
        counts = ct::CountCatalogue(data + "/Geheim.idx");
    }
    for (const ct::Failure& f : {resolved, counts.failure}) {
        EXPECT_EQ(f.code, ct::FailCode::Unreadable);
        EXPECT_EQ(f.sysError, EACCES);
        EXPECT_EQ(ct::FailureText(f, 10000), "Cannot read \"" + data + "/Geheim.idx\" (Permission denied).");
        EXPECT_EQ(ct::FailureText(f, 0), "„" + data + "/Geheim.idx“ kann nicht gelesen werden (Zugriff verweigert).");
    }
    EXPECT_FALSE(counts.opened);
}

}  // namespace
