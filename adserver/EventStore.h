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
    EventStore() = default;
    bool prepare(std::string* error);

    mutable std::mutex mutex_;
    mutable std::condition_variable stored_;
    bool released_ = false;
    sqlite3* db_ = nullptr;
    sqlite3_stmt* insert_ = nullptr;
    sqlite3_stmt* latest_ = nullptr;
    EventTally tally_;
    int64_t lastId_ = 0;
    std::string lastError_;
};
