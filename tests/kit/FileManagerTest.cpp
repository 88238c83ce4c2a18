#include "kit/FileManager.h"
#include "tests/support/SimTest.h"

using kit::FileManager;
namespace fs = std::filesystem;

class FileManagerTest : public SimTest {
protected:
    FileManager& files() { return FileManager::defaultManager(); }
    size_t entriesIn(const fs::path& folder) {
        return static_cast<size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }
};

TEST_F(FileManagerTest, AtomicWriteReplacesTheWholeFileAndLeavesNothingBehind) {
    fs::path path = files().cachesFolder() / "file.bin";
    std::string bytes("first\0version", 13);
    ASSERT_TRUE(files().writeAtomically(path, bytes));
    EXPECT_EQ(files().read(path), bytes);
    ASSERT_TRUE(files().writeAtomically(path, ""));
    EXPECT_EQ(files().read(path), "") << "an empty file is read as empty, not as missing";
    EXPECT_EQ(entriesIn(files().cachesFolder()), 1u) << "no temporary file is left beside it";
}

TEST_F(FileManagerTest, AFailedWriteReportsTheErrorAndKeepsTheOldContent) {
    fs::path path = files().cachesFolder() / "taken";
    // A folder that is not empty stands in the way; it is made with its parent, and again is no error.
    ASSERT_TRUE(files().createFolder(path / "inside"));
    ASSERT_TRUE(files().createFolder(path / "inside"));
    std::shared_ptr<const kit::Error> error;
    EXPECT_FALSE(files().writeAtomically(path, "data", &error));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain(), FileManager::kErrorDomain);
    EXPECT_NE(error->localizedDescription().find("taken"), std::string::npos);
    EXPECT_TRUE(fs::is_directory(path / "inside"));
    EXPECT_EQ(entriesIn(files().cachesFolder()), 1u);
    error.reset();
    ASSERT_TRUE(files().writeAtomically(files().cachesFolder() / "plain", "x"));
    EXPECT_FALSE(files().createFolder(files().cachesFolder() / "plain" / "sub", &error));
    EXPECT_TRUE(error) << "no folder inside a file";
}

TEST_F(FileManagerTest, MissingFilesHaveNoContentOrTimeAndRemovingThemIsNoError) {
    fs::path path = files().documentsFolder() / "gone";
    EXPECT_FALSE(files().read(path));
    EXPECT_FALSE(files().modificationTime(path));
    EXPECT_FALSE(files().setModificationTime(path, 1321361126));
    ASSERT_TRUE(files().writeAtomically(path, "x"));
    EXPECT_TRUE(files().remove(path));
    EXPECT_FALSE(files().exists(path));
    EXPECT_TRUE(files().remove(path));
}
