// The event store on its own: what it keeps across a crash and under many writers.
#include "adserver/EventStore.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

namespace {

class EventStoreTest : public ::testing::Test {
protected:
    EventStoreTest()
        : folder(std::filesystem::temp_directory_path() / ("eventstore-test-" + std::to_string(getpid()))) {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
    }
    ~EventStoreTest() override { std::filesystem::remove_all(folder); }
    std::string path() const { return (folder / "events.db").string(); }
    static Event event(std::string kind, std::string slot, std::string outcome = "") {
        Event e;
        e.kind = std::move(kind);
        e.slot = std::move(slot);
        e.outcome = std::move(outcome);
        e.query = "slotname=" + e.slot;
        return e;
    }

    std::filesystem::path folder;
};

TEST_F(EventStoreTest, AnsweredEventsSurviveACrashOfTheProcess) {
    pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        // Stores and dies at once: no close, no checkpoint, no destructors.
        auto store = EventStore::open(path(), nullptr);
        bool stored =
            store && store->record(event("request", "a", "fill")) && store->record(event("imp", "a"));
        _exit(stored ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    ASSERT_TRUE(std::filesystem::exists(path() + "-wal")) << "the events were still in the log";

    std::string error;
    auto store = EventStore::open(path(), &error);
    ASSERT_TRUE(store) << error;
    auto events = store->latest(0, 10);
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0].kind + " " + events[0].query, "imp slotname=a");
    EXPECT_EQ(events[1].outcome, "fill");
    int64_t lastId = 0;
    auto tally = store->tally(&lastId);
    EXPECT_EQ(lastId, events[0].id);
    EXPECT_EQ(tally.slots().at("a"), (EventTally::Counts{.requests = 1, .fills = 1, .impressions = 1}));
}

TEST_F(EventStoreTest, ManyWritersLoseNothing) {
    auto store = EventStore::open(path(), nullptr);
    ASSERT_TRUE(store);
    std::vector<std::thread> writers;
    for (int w = 0; w < 8; ++w)
        writers.emplace_back([&, w] {
            for (int i = 0; i < 200; ++i) store->record(event("ping", "slot" + std::to_string(w), "imp"));
        });
    for (auto& writer : writers) writer.join();
    auto tally = store->tally();
    EXPECT_EQ(tally.totals().pings, 1600);
    for (int w = 0; w < 8; ++w) EXPECT_EQ(tally.slots().at("slot" + std::to_string(w)).impressions, 200);
    EXPECT_EQ(store->latest(0, 2000).size(), 1600u);
}

TEST_F(EventStoreTest, WhatIsNoDatabaseIsRefusedWithAReason) {
    std::filesystem::create_directories(folder / "a-folder");
    std::string error;
    EXPECT_FALSE(EventStore::open((folder / "a-folder").string(), &error));
    EXPECT_NE(error.find("unable to open"), std::string::npos) << error;
    std::ofstream(path()) << "these are not the events you are looking for, not at all, not a single one";
    EXPECT_FALSE(EventStore::open(path(), &error));
    EXPECT_NE(error.find("not a database"), std::string::npos) << error;
}

}  // namespace
