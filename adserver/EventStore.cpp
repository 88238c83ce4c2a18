#include "adserver/EventStore.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <chrono>

namespace {

constexpr const char* kSchema = R"(
CREATE TABLE IF NOT EXISTS events (
  id INTEGER PRIMARY KEY,
  time REAL NOT NULL,
  kind TEXT NOT NULL,
  slot BLOB NOT NULL,
  network BLOB NOT NULL,
  outcome TEXT NOT NULL,
  detail BLOB NOT NULL,
  path TEXT NOT NULL,
  query BLOB NOT NULL
);
)";

std::string columnBytes(sqlite3_stmt* statement, int column) {
    const void* bytes = sqlite3_column_blob(statement, column);
    int size = sqlite3_column_bytes(statement, column);
    return bytes ? std::string(static_cast<const char*>(bytes), size_t(size)) : std::string();
}

void bindBytes(sqlite3_stmt* statement, int index, const std::string& bytes) {
    // A zero-length blob must still be a blob, not NULL.
    sqlite3_bind_blob(statement, index, bytes.empty() ? "" : bytes.data(), int(bytes.size()),
                      SQLITE_TRANSIENT);
}

void bindText(sqlite3_stmt* statement, int index, const std::string& text) {
    sqlite3_bind_text(statement, index, text.data(), int(text.size()), SQLITE_TRANSIENT);
}

Event readEvent(sqlite3_stmt* statement) {
    Event event;
    event.id = sqlite3_column_int64(statement, 0);
    event.time = sqlite3_column_double(statement, 1);
    event.kind = columnBytes(statement, 2);
    event.slot = columnBytes(statement, 3);
    event.network = columnBytes(statement, 4);
    event.outcome = columnBytes(statement, 5);
    event.detail = columnBytes(statement, 6);
    event.path = columnBytes(statement, 7);
    event.query = columnBytes(statement, 8);
    return event;
}

}  // namespace

std::unique_ptr<EventStore> EventStore::open(const std::string& path, std::string* error) {
    std::unique_ptr<EventStore> store(new EventStore());
    std::string reason;
    if (!store->prepare(path, &reason)) {
        if (error) *error = fmt::format("cannot use the event store {}: {}", path, reason);
        return nullptr;
    }
    return store;
}

bool EventStore::prepare(const std::string& path, std::string* error) {
    auto fail = [&](sqlite3* db) {
        *error = db ? sqlite3_errmsg(db) : "out of memory";
        return false;
    };
    constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    if (sqlite3_open_v2(path.c_str(), &db_, kFlags, nullptr) != SQLITE_OK) return fail(db_);
    // Another process may hold the database for a moment (a second server, a shell).
    sqlite3_busy_timeout(db_, 5000);
    sqlite3_stmt* mode = nullptr;
    if (sqlite3_prepare_v2(db_, "PRAGMA journal_mode=WAL", -1, &mode, nullptr) != SQLITE_OK) return fail(db_);
    bool wal = sqlite3_step(mode) == SQLITE_ROW && columnBytes(mode, 0) == "wal";
    sqlite3_finalize(mode);
    if (!wal) {
        *error = "the database cannot be put in WAL mode";
        return false;
    }
    // In WAL mode a commit is in the log before it returns; NORMAL leaves the fsync to checkpoints,
    // which keeps every event across a crash of this process (not across a power cut).
    if (sqlite3_exec(db_, "PRAGMA synchronous=NORMAL", nullptr, nullptr, nullptr) != SQLITE_OK ||
        sqlite3_exec(db_, kSchema, nullptr, nullptr, nullptr) != SQLITE_OK)
        return fail(db_);
    auto statement = [&](sqlite3* db, const char* sql, sqlite3_stmt** out) {
        return sqlite3_prepare_v3(db, sql, -1, SQLITE_PREPARE_PERSISTENT, out, nullptr) == SQLITE_OK;
    };
    if (!statement(db_, "BEGIN IMMEDIATE", &begin_) || !statement(db_, "COMMIT", &commit_) ||
        !statement(db_, "ROLLBACK", &rollback_) ||
        !statement(db_,
                   "INSERT INTO events (time, kind, slot, network, outcome, detail, path, query) "
                   "VALUES (?, ?, ?, ?, ?, ?, ?, ?)",
                   &insert_))
        return fail(db_);

    if (sqlite3_open_v2(path.c_str(), &reader_, kFlags, nullptr) != SQLITE_OK) return fail(reader_);
    sqlite3_busy_timeout(reader_, 5000);
    if (!statement(reader_,
                   "SELECT id, time, kind, slot, network, outcome, detail, path, query FROM events "
                   "WHERE id > ? ORDER BY id DESC LIMIT ?",
                   &latest_))
        return fail(reader_);

    // The counts start from what is stored, a group at a time.
    sqlite3_stmt* groups = nullptr;
    if (sqlite3_prepare_v2(reader_,
                           "SELECT kind, slot, network, outcome, COUNT(*), MAX(id) FROM events "
                           "GROUP BY kind, slot, network, outcome",
                           -1, &groups, nullptr) != SQLITE_OK)
        return fail(reader_);
    int step;
    while ((step = sqlite3_step(groups)) == SQLITE_ROW) {
        Event event;
        event.kind = columnBytes(groups, 0);
        event.slot = columnBytes(groups, 1);
        event.network = columnBytes(groups, 2);
        event.outcome = columnBytes(groups, 3);
        tally_.add(event, sqlite3_column_int64(groups, 4));
        lastId_ = std::max<int64_t>(lastId_, sqlite3_column_int64(groups, 5));
    }
    sqlite3_finalize(groups);
    return step == SQLITE_DONE || fail(reader_);
}

std::optional<int64_t> EventStore::record(Event event) {
    Pending pending;
    pending.event = std::move(event);
    pending.event.time =
        std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    std::unique_lock<std::mutex> lock(mutex_);
    queue_.push_back(&pending);
    while (!pending.done) {
        if (committing_) {
            stored_.wait(lock);
            continue;
        }
        // No one is committing: this thread commits everything queued, its own event included.
        committing_ = true;
        std::vector<Pending*> batch;
        batch.swap(queue_);
        lock.unlock();
        commit(batch);
        lock.lock();
        for (Pending* done : batch) {
            if (done->id) {
                tally_.add(done->event);
                lastId_ = std::max(lastId_, *done->id);
            }
            done->done = true;
        }
        committing_ = false;
        stored_.notify_all();
    }
    return pending.id;
}

void EventStore::commit(const std::vector<Pending*>& batch) {
    auto run = [](sqlite3_stmt* statement) {
        int result = sqlite3_step(statement);
        sqlite3_reset(statement);
        return result == SQLITE_DONE;
    };
    std::string failure;
    if (!run(begin_)) failure = sqlite3_errmsg(db_);
    for (Pending* pending : batch) {
        if (!failure.empty()) break;
        const Event& event = pending->event;
        sqlite3_clear_bindings(insert_);
        sqlite3_bind_double(insert_, 1, event.time);
        bindText(insert_, 2, event.kind);
        bindBytes(insert_, 3, event.slot);
        bindBytes(insert_, 4, event.network);
        bindText(insert_, 5, event.outcome);
        bindBytes(insert_, 6, event.detail);
        bindText(insert_, 7, event.path);
        bindBytes(insert_, 8, event.query);
        if (run(insert_))
            pending->id = sqlite3_last_insert_rowid(db_);
        else
            failure = sqlite3_errmsg(db_);
    }
    if (failure.empty() && !run(commit_)) failure = sqlite3_errmsg(db_);
    if (failure.empty()) return;
    // All or nothing: an event that was not committed has no id.
    run(rollback_);
    for (Pending* pending : batch) pending->id.reset();
    std::lock_guard<std::mutex> lock(mutex_);
    lastError_ = failure;
}

std::vector<Event> EventStore::latest(int64_t afterId, size_t limit) const {
    std::lock_guard<std::mutex> lock(readMutex_);
    std::vector<Event> events;
    sqlite3_bind_int64(latest_, 1, afterId);
    sqlite3_bind_int64(latest_, 2, int64_t(limit));
    while (sqlite3_step(latest_) == SQLITE_ROW) events.push_back(readEvent(latest_));
    sqlite3_reset(latest_);
    return events;
}

EventTally EventStore::tally(int64_t* lastId) const {
    std::lock_guard<std::mutex> lock(mutex_);
    if (lastId) *lastId = lastId_;
    return tally_;
}

bool EventStore::waitForEventAfter(int64_t id, double seconds) const {
    std::unique_lock<std::mutex> lock(mutex_);
    return stored_.wait_for(lock, std::chrono::duration<double>(seconds), [&] {
        return lastId_ > id || released_;
    }) && lastId_ > id;
}

void EventStore::releaseWaiters() {
    std::lock_guard<std::mutex> lock(mutex_);
    released_ = true;
    stored_.notify_all();
}

std::string EventStore::lastError() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return lastError_;
}

EventStore::~EventStore() {
    for (sqlite3_stmt* statement : {begin_, insert_, commit_, rollback_, latest_})
        sqlite3_finalize(statement);
    sqlite3_close(reader_);
    // Closing the last connection checkpoints the WAL into the database file.
    sqlite3_close(db_);
}
