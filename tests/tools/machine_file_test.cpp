// Files of saved machines that nobody has saved: each is refused in a few words, with little memory and time.
#include "quorvane-list/machine_file.h"

#include <QElapsedTimer>
#include <QTemporaryFile>
#include <archive.h>
#include <archive_entry.h>
#include <gtest/gtest.h>
#include <vector>

namespace {

struct Member {
    const char* name;
    unsigned type = AE_IFREG;
    std::string contents = {}; // of a file; of a link, its target
    bool overstated = false;   // the last one's head says 8 GiB
};

la_ssize_t Append(archive*, void* bytes, const void* block, size_t size) {
    static_cast<std::string*>(bytes)->append(static_cast<const char*>(block), size);
    return la_ssize_t(size);
}

// The size in a member's head, and the head's sum.
void Overstate(std::string& bytes, const char* name) {
    const std::size_t head = bytes.rfind(name);
    bytes.replace(head + 124, 11, "77777777777");
    bytes.replace(head + 148, 8, 8, ' ');
    unsigned sum = 0;
    for (std::size_t i = 0; i < 512; ++i)
        sum += static_cast<unsigned char>(bytes[head + i]);
    char text[8];
    std::snprintf(text, sizeof text, "%06o", sum);
    bytes.replace(head + 148, 7, text, 7);
}

// Without compression, which would hide nothing of what is tested.
std::string Packed(const std::vector<Member>& members) {
    std::string bytes;
    archive* const packed = archive_write_new();
    archive_write_set_format_gnutar(packed);
    archive_write_set_bytes_per_block(packed, 512);
    archive_write_open(packed, &bytes, nullptr, Append, nullptr);
    for (const Member& member : members) {
        archive_entry* const entry = archive_entry_new();
        archive_entry_set_pathname(entry, member.name);
        archive_entry_set_filetype(entry, member.type);
        archive_entry_set_perm(entry, 0644);
        const bool file = member.type == AE_IFREG;
        archive_entry_set_size(entry, file ? la_int64_t(member.contents.size()) : 0);
        if (member.type == AE_IFLNK)
            archive_entry_set_symlink(entry, member.contents.c_str());
        if (member.type == 0) {
            archive_entry_set_filetype(entry, AE_IFREG);
            archive_entry_set_hardlink(entry, member.contents.c_str());
        }
        archive_write_header(packed, entry);
        if (file)
            archive_write_data(packed, member.contents.data(), member.contents.size());
        archive_entry_free(entry);
    }
    archive_write_free(packed);
    if (!members.empty() && members.back().overstated)
        Overstate(bytes, members.back().name);
    return bytes;
}

const std::string None = "it is no saved machine";
const std::string Damaged = "it is cut short or damaged";

const Member Facts{"machine.txt", AE_IFREG, "quorvane-machine 1\nnew\tthing\n\nlive\t6.1.0\n"};

std::string Complaint(const std::string& bytes) {
    pnp::SavedMachine machine;
    return list_tool::UnpackMachine(bytes, machine);
}

} // namespace

TEST(MachineFile, HoldsAMachineAndNothingElse) {
    const std::string strange = "it holds what no machine has (entry 2)";
    const std::string third = "it holds what no machine has (entry 3)";
    const std::string longName = "sys/" + std::string(256, 'n');
    std::string deep = "sys";
    for (int i = 0; i < 61; ++i)
        deep += "/a";
    struct Row {
        std::vector<Member> members;
        std::string complaint;
    };
    const Row rows[] = {
        {{Facts, {"sys", AE_IFDIR}, {"sys/bus/x", AE_IFREG, "1"}, {"sys/l", AE_IFLNK, "bus/x"}}, ""},
        {{}, None},
        {{{"sys", AE_IFDIR}, Facts}, None},
        {{{"machine.txt", AE_IFREG, "something"}}, None},
        {{{"machine.txt", AE_IFREG, "quorvane-machine x\n"}}, None},
        {{{"machine.txt", AE_IFREG, "quorvane-machine 0\n"}}, None},
        {{{"machine.txt", AE_IFREG, "quorvane-machine 2\n"}}, "it was saved by a newer version of this program"},
        {{{"machine.txt", AE_IFLNK, "/etc/passwd"}}, Damaged},
        {{Facts, Facts}, "it holds its facts twice"},
        {{Facts, {"other", AE_IFREG, "1"}}, strange},
        {{Facts, {"/etc/passwd", AE_IFREG, "1"}}, strange},
        {{Facts, {"../sys/x", AE_IFREG, "1"}}, strange},
        {{Facts, {"sys/../x", AE_IFREG, "1"}}, strange},
        {{Facts, {"sys/a/../../x", AE_IFDIR}}, strange},
        {{Facts, {"sys/./x", AE_IFREG, "1"}}, strange},
        {{Facts, {"sys/x\n", AE_IFREG, "1"}}, strange},
        {{Facts, {longName.c_str(), AE_IFREG, "1"}}, strange},
        {{Facts, {deep.c_str(), AE_IFDIR}}, strange},
        {{Facts, {"sys/l", AE_IFLNK, "../x"}}, strange},
        {{Facts, {"sys/a/l", AE_IFLNK, "b/../../../sys/x"}}, strange},
        {{Facts, {"sys/a/l", AE_IFLNK, "./b/../../x"}}, ""},
        {{Facts, {"sys/l", AE_IFLNK, "/etc/passwd"}}, strange},
        {{Facts, {"sys/h", 0, "machine.txt"}}, strange},
        {{Facts, {"sys/d", AE_IFBLK}}, strange},
        {{Facts, {"sys/d", AE_IFCHR}}, strange},
        {{Facts, {"sys/p", AE_IFIFO}}, strange},
        {{Facts, {"sys/l", AE_IFLNK, "d"}, {"sys/l/x", AE_IFREG, "1"}}, third},
        {{Facts, {"sys/l", AE_IFLNK, "d"}, {"sys/l", AE_IFLNK, "e"}}, third},
        {{Facts, {"sys/x", AE_IFREG, "1"}, {"sys/x", AE_IFLNK, "d"}}, third},
        {{Facts, {"sys/x", AE_IFREG, "1"}, {"sys/x/y", AE_IFDIR}}, third},
        {{Facts, {"sys/x", AE_IFREG, std::string(70000, 'x')}}, Damaged},
        {{Facts, {"sys/x", AE_IFREG, "", true}}, Damaged},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Complaint(Packed(row.members)), row.complaint)
            << (row.members.empty() ? "empty" : row.members.back().name) << " " << &row - rows;
}

TEST(MachineFile, CutAnywhereIsTold) {
    const auto tree = std::make_shared<pnp::SavedTree>();
    for (int i = 0; i < 40; ++i)
        ASSERT_TRUE(tree->AddFile("/bus/" + std::string(size_t(i) * 6 + 1, 'n'), std::to_string(i * 7919)));
    const std::string path = testing::TempDir() + "/machine_file_test.tar.xz";
    ASSERT_EQ(list_tool::WriteMachine({{}, tree}, path), "");
    pnp::SavedMachine machine;
    EXPECT_EQ(list_tool::ReadMachine(path, machine), "");
    EXPECT_EQ(machine.tree->Count(), tree->Count());
    std::string whole;
    FILE* const file = fopen(path.c_str(), "rb");
    for (int byte = 0; (byte = fgetc(file)) != EOF;)
        whole += char(byte);
    fclose(file);
    remove(path.c_str());
    const auto isTold = [](const std::string& bytes) {
        const std::string complaint = Complaint(bytes);
        return complaint == None || complaint == Damaged;
    };
    for (std::size_t length = 0; length < whole.size(); length += 3)
        EXPECT_TRUE(isTold(whole.substr(0, length))) << length;
    // A byte that is wrong is as bad: the packing has its check sums.
    for (std::size_t at = 0; at < whole.size(); at += 5) {
        std::string wrong = whole;
        wrong[at] = char(wrong[at] ^ 0x10);
        EXPECT_TRUE(isTold(wrong)) << at;
    }
}

// In circles, through too many, or above the root, they end at nothing.
TEST(MachineFile, LinksEndInside) {
    const auto tree = std::make_shared<pnp::SavedTree>();
    ASSERT_TRUE(tree->AddFile("/a/b", "x") && tree->AddLink("/a/l", "../b/../a") && tree->AddLink("/self", "self"));
    for (int i = 0; i < 41; ++i)
        ASSERT_TRUE(tree->AddLink("/l" + std::to_string(i), i == 0 ? "a" : "l" + std::to_string(i - 1)));
    const auto root = OpenSavedTree(tree);
    EXPECT_EQ(root->Open("self"), nullptr);
    EXPECT_EQ(root->Open(".."), nullptr);
    EXPECT_EQ(root->Read("a/../../a/b", 9), std::nullopt);
    EXPECT_EQ(root->Open("a")->Open("../a")->Read("b", 9), "x");
    // "b" is no folder to climb out of, which a link's own text need not know.
    EXPECT_EQ(root->Open("a/l"), nullptr);
    EXPECT_EQ(root->Read("l39/b", 9), "x");
    EXPECT_TRUE(root->Has("l39/b"));
    EXPECT_EQ(root->Read("l40/b", 9), std::nullopt);
}

// Far more than a machine has, in few bytes or in many.
TEST(MachineFile, TooMuchIsRefusedSoon) {
    std::vector<Member> members(140000, Member{"sys/bus", AE_IFDIR});
    members.front() = Facts;
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(Complaint(Packed(members)), "it holds far more than a machine has");
    EXPECT_LT(timer.elapsed(), 60000);
    QTemporaryFile file;
    ASSERT_TRUE(file.open() && file.resize(16 * 1024 * 1024 + 1));
    pnp::SavedMachine machine;
    const std::string path = file.fileName().toStdString();
    EXPECT_EQ(list_tool::ReadMachine(path, machine), path + ": it is too large for a saved machine");
}
