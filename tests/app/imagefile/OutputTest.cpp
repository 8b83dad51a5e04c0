#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "Files.h"

namespace {

using files::Content;
using files::FaultOf;
using files::Folder;
using files::SetContent;
using imagefile::SOutputRules;
using pictures::Noise;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

mode_t ModeOf(const files::fs::path& file) {
    struct stat status = {};
    EXPECT_EQ(lstat(file.c_str(), &status), 0);
    return status.st_mode & 07777;
}

const CRowIteratorBands kPicture = Noise(ENPixelFormat::Colour8, 40, 30, 1);

// What stands in the way is refused beforehand and on writing, in the same words, and survives.
TEST(Output, KeepsWhatIsThere) {
    const struct {
        const char* name;
        bool overwrite;
        const char* says;  // empty: it is written
    } kCases[] = {
        {"new.png", false, ""},
        {"new.png", true, ""},
        {"old.png", false, "old.png: exists"},
        {"old.png", true, ""},
        {"input.png", false, "is the input file"},
        {"input.png", true, ""},
        {"hard-link.png", false, "is the input file"},
        {"hard-link.png", true, ""},
        {"link-to-input.png", false, "is the input file"},
        {"link-to-input.png", true, ""},
        {"link.png", false, "exists, a symbolic link"},
        {"link.png", true, ""},
        {"dangling.png", false, "exists, a symbolic link"},
        {"dangling.png", true, ""},
        {"folder.png", false, "is a folder"},
        {"folder.png", true, "is a folder"},
        {"link-to-folder.png", true, "is a folder"},
        {"pipe.png", true, "a device or a pipe"},
        {"missing/x.png", true, "No such file or directory"},
        {"old.png/x.png", true, "Not a directory"},
        {"new.bmp", true, "one of"},
        {"new", true, "the extension tells no kind"},
    };
    for (const auto& output : kCases) {
        SCOPED_TRACE(std::string(output.name) + (output.overwrite ? " over" : ""));
        const Folder folder;
        for (const char* name : {"old.png", "input.png", "aim.png"})
            SetContent(folder / name, "old");
        files::fs::create_hard_link(folder / "input.png", folder / "hard-link.png");
        files::fs::create_symlink("input.png", folder / "link-to-input.png");
        files::fs::create_symlink("aim.png", folder / "link.png");
        files::fs::create_symlink("nowhere.png", folder / "dangling.png");
        files::fs::create_directory(folder / "folder.png");
        files::fs::create_symlink("folder.png", folder / "link-to-folder.png");
        ASSERT_EQ(mkfifo((folder / "pipe.png").c_str(), 0600), 0);
        auto names = folder.Names();

        const auto file = folder / output.name;
        const SOutputRules rules = {output.overwrite, folder / "input.png"};
        const std::string checked = FaultOf([&] { imagefile::CheckOutput(file, rules); });
        EXPECT_EQ(folder.Names(), names) << "a check leaves nothing";
        EXPECT_EQ(FaultOf([&] { files::Write(file, kPicture, rules); }), checked);
        const std::string name = file.filename();
        for (const char* kept : {"old.png", "input.png", "aim.png"}) {
            const bool is_written = name == kept && checked.empty();
            EXPECT_EQ(Content(folder / kept) == "old", !is_written) << kept;
        }
        if (*output.says == 0) {
            EXPECT_EQ(checked, "");
            EXPECT_EQ(pictures::Difference(imagefile::ReadImage(file).pixels, kPicture), "");
            EXPECT_TRUE(files::fs::is_regular_file(files::fs::symlink_status(file)));
            if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
            std::sort(names.begin(), names.end());
        } else if (std::string(output.says).find("one of") == std::string::npos) {
            EXPECT_THAT(checked, HasSubstr(output.says));
        } else {
            EXPECT_THAT(checked, StartsWith("usage: "));
        }
        EXPECT_EQ(folder.Names(), names) << "nothing else is left";
    }
}

// With and without nameless files; permissions of what is replaced stay, others follow the umask.
TEST(Output, PublishesInOneStepWithTheRightPermissions) {
    const mode_t mask = umask(027);
    for (const bool unnamed : {true, false}) {
        const Folder folder;
        SetContent(folder / "private", "old");
        files::fs::permissions(folder / "private", files::fs::perms(0600));
        SetContent(folder / "public", "old");
        files::fs::permissions(folder / "public", files::fs::perms(0664));
        for (const char* name : {"new", "private", "public"}) {
            const SOutputRules rules = {std::string(name) != "new", {}};
            const std::string before = Content(folder / name);
            COutputFile output(folder / name, rules, unnamed);
            output.Write(std::vector<std::uint8_t>{'n', 'e', 'w'});
            EXPECT_EQ(Content(folder / name), before);
            // Nobody who may not read the old file reads the new one before it is there.
            struct stat written = {};
            ASSERT_EQ(fstat(output.Descriptor(), &written), 0);
            EXPECT_EQ(written.st_mode & 0777 & ~(rules.overwrite ? 0600U : 0640U), 0U) << name;
            EXPECT_EQ(folder.Names().size(), (rules.overwrite ? 3U : 2U) + (unnamed ? 0 : 1));
            output.Publish();
            EXPECT_EQ(Content(folder / name), "new");
            EXPECT_EQ(folder.Names().size(), 3U);
        }
        EXPECT_EQ(ModeOf(folder / "new"), 0640U);
        EXPECT_EQ(ModeOf(folder / "private"), 0600U);
        EXPECT_EQ(ModeOf(folder / "public"), 0664U);
        {
            const COutputFile dropped(folder / "other", {}, unnamed);
            COutputFile late(folder / "late", {}, unnamed);
            SetContent(folder / "late", "first");
            EXPECT_THAT(FaultOf([&] { late.Publish(); }), HasSubstr("late: exists"));
        }
        EXPECT_EQ(Content(folder / "late"), "first");
        EXPECT_THAT(folder.Names(), ElementsAre("late", "new", "private", "public"));
    }
    umask(mask);
}

// Runs `work` in a process of its own and answers how that ended.
int StatusOf(const auto& work) {
    const pid_t child = fork();
    if (child == 0) {
        work();
        _exit(99);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

TEST(Output, SignalsLeaveNothing) {
    for (const bool unnamed : {true, false}) {
        for (const int number : {SIGTERM, SIGKILL}) {
            if (!unnamed && number == SIGKILL) continue;  // nobody is left to clean up
            const Folder folder;
            const int status = StatusOf([&] {
                std::signal(SIGTERM, [](int) {
                    imagefile::RemovePendingOutput();
                    _exit(143);
                });
                COutputFile first(folder / "a.png", {}, unnamed);
                COutputFile second(folder / "b.png", {}, unnamed);
                if (folder.Names().size() == (unnamed ? 0U : 2U)) raise(number);
            });
            EXPECT_TRUE(number == SIGKILL ? WIFSIGNALED(status) : WEXITSTATUS(status) == 143);
            EXPECT_THAT(folder.Names(), IsEmpty());
        }
    }
}

// What a killed process has left goes with the next file that is written beside it; what another
// process is at work on stays, and so does what is not ours.
TEST(Output, LeftoversAreRemovedLater) {
    const Folder folder;
    SetContent(folder / ".cmdtexture-of-mine.part", "");
    const pid_t worker = fork();
    if (worker == 0) {
        const COutputFile unfinished(folder / "a.png", {}, false);
        raise(SIGSTOP);
    }
    int status = 0;
    waitpid(worker, &status, WUNTRACED);
    const auto names_beside_another = [&] {
        return WEXITSTATUS(StatusOf([&] {
            const COutputFile next(folder / "b.png", {}, true);
            _exit(static_cast<int>(folder.Names().size()));
        }));
    };
    EXPECT_EQ(names_beside_another(), 2);
    kill(worker, SIGKILL);
    waitpid(worker, &status, 0);
    EXPECT_EQ(folder.Names().size(), 2U);
    EXPECT_EQ(names_beside_another(), 1);
}

// A pipe gets complete files only.
TEST(Output, StreamsGetWhatIsPublished) {
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    for (const bool publishes : {false, true}) {
        COutputFile output("-", {.overwrite = false, .input = {}, .stream = ends[1]});
        output.Write(std::vector<std::uint8_t>{'n', 'e', 'w'});
        if (publishes) output.Publish();
    }
    close(ends[1]);
    char got[8] = {};
    EXPECT_EQ(read(ends[0], got, sizeof got), 3);
    EXPECT_STREQ(got, "new");
    close(ends[0]);
}

// Every kind, at several moments at which the disk may run full.
TEST(Output, FullDisksAreTold) {
    const CRowIteratorBands picture = Noise(ENPixelFormat::Colour8, 300, 200, 2);
    rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto old_handler = std::signal(SIGXFSZ, SIG_IGN);
    for (const char* name : {"x.png", "x.jpg", "x.tif", "x.webp"}) {
        const Folder folder;
        SetContent(folder / name, "old");
        for (const rlim_t limit : {10, 5000, 50000}) {
            const rlimit small = {limit, before.rlim_max};
            ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
            const std::string fault = FaultOf([&] {
                files::Write(folder / name, picture, {true, {}});
            });
            setrlimit(RLIMIT_FSIZE, &before);
            EXPECT_THAT(fault, AllOf(StartsWith("output: "), HasSubstr("File too large"))) << limit;
        }
        EXPECT_THAT(folder.Names(), ElementsAre(name));
        EXPECT_EQ(Content(folder / name), "old");
    }
    std::signal(SIGXFSZ, old_handler);
}

TEST(Output, FullAndReadOnlyFileSystemsAreTold) {
    const Folder folder;
    if (mount("tmpfs", folder.Path().c_str(), "tmpfs", 0, "size=64k") != 0) {
        GTEST_SKIP() << "no file system of a test's own can be mounted here";
    }
    const CRowIteratorBands picture = Noise(ENPixelFormat::Colour8, 300, 200, 2);
    EXPECT_THAT(FaultOf([&] { files::Write(folder / "x.png", picture); }),
                AllOf(StartsWith("output: "), HasSubstr("No space left on device")));
    EXPECT_THAT(folder.Names(), IsEmpty());
    EXPECT_EQ(mount(nullptr, folder.Path().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    EXPECT_THAT(FaultOf([&] { imagefile::CheckOutput(folder / "x.png", {}); }),
                AllOf(StartsWith("output: "), HasSubstr("Read-only file system")));
    EXPECT_EQ(umount(folder.Path().c_str()), 0);
}

TEST(Output, MissingPermissionsAreTold) {
    const Folder folder;
    for (const char* name : {"secret.png", "mine.png"}) files::Write(folder / name, kPicture);
    files::fs::permissions(folder / "secret.png", files::fs::perms::none);
    files::fs::permissions(folder / "mine.png", files::fs::perms(0444));
    files::fs::permissions(folder.Path(), files::fs::perms(0777));
    // For root everything is permitted: it becomes somebody else for a while.
    const auto become = [is_root = geteuid() == 0](uid_t user) {
        EXPECT_TRUE(!is_root || seteuid(user) == 0);
    };
    become(65534);
    EXPECT_THAT(files::ReadFault(folder / "secret.png"),
                AllOf(StartsWith("unreadable: "), HasSubstr("Permission denied")));
    EXPECT_THAT(FaultOf([&] {
                    files::Write(folder / "mine.png", kPicture, {true, {}});
                }),
                AllOf(StartsWith("output: "), HasSubstr("cannot be replaced: Permission denied")));
    become(0);
    files::fs::permissions(folder.Path(), files::fs::perms(0555));
    become(65534);
    EXPECT_THAT(
        FaultOf([&] { imagefile::CheckOutput(folder / "new.png", {}); }),
        AllOf(StartsWith("output: "), HasSubstr("cannot be written to: Permission denied")));
    become(0);
    files::fs::permissions(folder.Path(), files::fs::perms(0700));
}

// A name is nothing but a name, to be read and to be written.
TEST(Output, NamesAreOnlyNames) {
    const Folder folder;
    const auto start = files::fs::current_path();
    files::fs::current_path(folder.Path());
    for (const char* name :
         {"-.png", "--overwrite.png", "a\nb.png", "x[page=2].png", "x%d.tif", "png:x.webp",
          "@x.jpg", "\xff\xfe.png", " .png", "a.b,c=d.png", "x.v[strip]=.tif"}) {
        EXPECT_EQ(FaultOf([&] { files::Write(name, kPicture); }), "") << name;
        EXPECT_EQ(files::ReadFault(name), "") << name;
        EXPECT_THAT(folder.Names(), ElementsAre(name));
        files::fs::remove(name);
    }
    const std::string longest = std::string(251, 'x') + ".png";
    EXPECT_EQ(FaultOf([&] { files::Write(longest, kPicture, {true, {}}); }), "");
    EXPECT_THAT(FaultOf([&] { imagefile::CheckOutput("x" + longest, {}); }),
                StartsWith("output: "));
    EXPECT_EQ(files::ReadFault("a\nb\x1b.png"),
              "unreadable: a\\x0ab\\x1b.png: cannot be read: No such file or directory");
    files::fs::current_path(start);
}

TEST(Output, SidesThatAKindCannotHoldAreRefusedAtOnce) {
    const Folder folder;
    const struct {
        const char* name;
        int side;
    } cases[] = {{"x.webp", 16383}, {"x.jpg", 65500}, {"x.png", 65535}, {"x.tif", 65535}};
    for (const auto& c : cases) {
        const char* name = c.name;
        const int side = c.side;
        EXPECT_EQ(FaultOf([&] { imagefile::CheckOutput(folder / name, {}, {side, side}); }), "");
        CRowIteratorBands wide;
        ASSERT_FALSE(wide.CreateGreyscale(side + 1, 1, {0xffffff}).Failed());
        EXPECT_THAT(FaultOf([&] { files::Write(folder / name, wide); }), StartsWith("limit: "));
        ASSERT_FALSE(wide.CreateGreyscale(side, 1, {0xffffff}).Failed());
        EXPECT_EQ(FaultOf([&] { files::Write(folder / name, wide); }), "") << name;
    }
}

}  // namespace
