#include "kit/FileManager.h"
#include "tests/support/SimTest.h"

#include <cerrno>

using kit::FileManager;
namespace fs = std::filesystem;

class FileManagerTest : public SimTest {
protected:
    FileManager& files() { return FileManager::defaultManager(); }
    size_t entriesIn(const fs::path& folder) {
        return static_cast<size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }
};

TEST_F(FileManagerTest, EachTestHasItsOwnFolders) {
    EXPECT_TRUE(fs::is_directory(files().cachesFolder()));
    EXPECT_TRUE(fs::is_directory(files().documentsFolder()));
    EXPECT_EQ(files().cachesFolder().parent_path(), sim().folder());
}

TEST_F(FileManagerTest, AtomicWriteReplacesTheWholeFileAndLeavesNothingBehind) {
    fs::path path = files().cachesFolder() / "file.bin";
    std::string bytes("first\0version", 13);
    ASSERT_TRUE(files().writeAtomically(path, bytes));
    EXPECT_EQ(files().read(path), bytes);
    ASSERT_TRUE(files().writeAtomically(path, "second"));
    EXPECT_EQ(files().read(path), "second");
    EXPECT_EQ(entriesIn(files().cachesFolder()), 1u) << "no temporary file is left beside it";
}

TEST_F(FileManagerTest, AFailedWriteReportsTheErrorAndKeepsTheOldContent) {
    fs::path path = files().cachesFolder() / "taken";
    ASSERT_TRUE(files().createFolder(path / "inside"));  // a folder that is not empty stands in the way
    std::shared_ptr<const kit::Error> error;
    EXPECT_FALSE(files().writeAtomically(path, "data", &error));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain(), FileManager::kErrorDomain);
    EXPECT_NE(error->code(), 0);
    EXPECT_NE(error->localizedDescription().find("taken"), std::string::npos);
    EXPECT_TRUE(fs::is_directory(path / "inside"));
    EXPECT_EQ(entriesIn(files().cachesFolder()), 1u);
}

TEST_F(FileManagerTest, CreatesFoldersWithTheirParents) {
    fs::path deep = files().cachesFolder() / "a" / "b" / "c";
    EXPECT_TRUE(files().createFolder(deep));
    EXPECT_TRUE(files().createFolder(deep)) << "an existing folder is fine";
    EXPECT_TRUE(fs::is_directory(deep));
    ASSERT_TRUE(files().writeAtomically(files().cachesFolder() / "plain", "x"));
    std::shared_ptr<const kit::Error> error;
    EXPECT_FALSE(files().createFolder(files().cachesFolder() / "plain" / "sub", &error));
    ASSERT_TRUE(error);
}

TEST_F(FileManagerTest, ModificationTimeCanBeSetAndRead) {
    fs::path path = files().cachesFolder() / "dated";
    EXPECT_FALSE(files().modificationTime(path));
    EXPECT_FALSE(files().setModificationTime(path, 1321361126));
    ASSERT_TRUE(files().writeAtomically(path, "x"));
    ASSERT_TRUE(files().setModificationTime(path, 1321361126));
    EXPECT_EQ(files().modificationTime(path), 1321361126.0);
}

TEST_F(FileManagerTest, ReadAndRemove) {
    fs::path path = files().documentsFolder() / "gone";
    EXPECT_FALSE(files().read(path));
    ASSERT_TRUE(files().writeAtomically(path, ""));
    EXPECT_EQ(files().read(path), "");
    EXPECT_TRUE(files().exists(path));
    EXPECT_TRUE(files().remove(path));
    EXPECT_FALSE(files().exists(path));
    EXPECT_TRUE(files().remove(path)) << "removing what is not there is not an error";
}
