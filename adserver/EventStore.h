#pragma once

#include "adserver/Event.h"
#include "adserver/EventTally.h"

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

// The events, in an SQLite database in WAL mode: each one is committed before its request is
// answered, so what was answered survives a crash or a restart. Outside text is bound as blobs and
// never becomes part of SQL. Safe to use from every request thread.
//
// Commits are shared (a group commit): the request thread that finds no commit running commits
// every event queued so far in one transaction, while those that arrive meanwhile wait for the next.
// Under load, requests share commits instead of queueing for one each. Reads go through a
// connection of their own.
class EventStore {
public:
    // Opens or creates the database. None with *error set (one line) when it cannot.
    static std::unique_ptr<EventStore> open(const std::string& path, std::string* error);
    ~EventStore();
    EventStore(const EventStore&) = delete;
    EventStore& operator=(const EventStore&) = delete;

    // Stores the event with the current time and counts it; its id, or none when the database
    // refused it (the reason is in lastError()).
    std::optional<int64_t> record(Event event);
    // Events after `afterId`, newest first, at most `limit`.
    std::vector<Event> latest(int64_t afterId, size_t limit) const;
    // The counts of every stored event, and the id of the newest one they include.
    EventTally tally(int64_t* lastId = nullptr) const;
    std::string lastError() const;
    // Waits until an event newer than `id` is stored, `seconds` pass or releaseWaiters() is called;
    // true when there is a newer event.
    bool waitForEventAfter(int64_t id, double seconds) const;
    // Ends every wait, now and later (the server is stopping).
    void releaseWaiters();

private:
    // An event on its way to the database, and what became of it.
    struct Pending {
        Event event;
        std::optional<int64_t> id;
        bool done = false;
    };

    EventStore() = default;
    bool prepare(const std::string& path, std::string* error);
    // Stores the batch in one transaction; sets the ids of those stored.
    void commit(const std::vector<Pending*>& batch);

    // Guards the queue, the counts and the flags below.
    mutable std::mutex mutex_;
    mutable std::condition_variable stored_;
    std::vector<Pending*> queue_;
    bool committing_ = false;
    bool released_ = false;
    EventTally tally_;
    int64_t lastId_ = 0;
    std::string lastError_;

    // Used by the committing thread only.
    sqlite3* db_ = nullptr;
    sqlite3_stmt* begin_ = nullptr;
    sqlite3_stmt* insert_ = nullptr;
    sqlite3_stmt* commit_ = nullptr;
    sqlite3_stmt* rollback_ = nullptr;

    mutable std::mutex readMutex_;
    sqlite3* reader_ = nullptr;
    sqlite3_stmt* latest_ = nullptr;
};
