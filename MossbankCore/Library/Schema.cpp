// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/Schema.h"

#include "MossbankCore/Library/Database.h"
#include "MossbankCore/Library/StoreError.h"

#include <array>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

struct Migration {
    int number;
    QString sql;
};

// secure_delete is a setting of the connection and so stands in the script of every open;
// journal_mode=WAL stays in the file. With both, deleted words really leave it.
QString baseScript()
{
    return uR"(PRAGMA journal_mode=WAL;
PRAGMA secure_delete=ON;
CREATE TABLE IF NOT EXISTS memories (
  id TEXT PRIMARY KEY, timestamp REAL NOT NULL, app_name TEXT NOT NULL,
  bundle_id TEXT NOT NULL, text TEXT NOT NULL, filename TEXT NOT NULL, bytes INTEGER NOT NULL
);
CREATE INDEX IF NOT EXISTS memories_time ON memories(timestamp);)"_s;
}

// Takes the older search table and triggers away; version 3 makes them anew right after.
QString version2()
{
    return uR"(DROP TRIGGER IF EXISTS memories_insert;
DROP TRIGGER IF EXISTS memories_delete;
DROP TABLE IF EXISTS memory_search;
DROP TABLE IF EXISTS memory_slots;
CREATE TABLE memory_slots (
  slot INTEGER NOT NULL, app_name TEXT NOT NULL, count INTEGER NOT NULL, bytes INTEGER NOT NULL,
  PRIMARY KEY (slot, app_name)
) WITHOUT ROWID;
INSERT INTO memory_slots SELECT )"_s +
           Schema::slot(u"timestamp"_s) +
           u", app_name, count(*), sum(bytes) FROM memories GROUP BY 1, 2;"_s;
}

// The order of the search table's columns is what the weights of ranked searches count on.
QString version3()
{
    const QString newSlot = Schema::slot(u"new.timestamp"_s);
    const QString oldSlot = Schema::slot(u"old.timestamp"_s);
    return uR"(ALTER TABLE memories ADD COLUMN title TEXT NOT NULL DEFAULT '';
ALTER TABLE memories ADD COLUMN link TEXT NOT NULL DEFAULT '';
DROP TRIGGER IF EXISTS memories_insert;
DROP TRIGGER IF EXISTS memories_delete;
DROP TABLE IF EXISTS memory_search;
CREATE VIRTUAL TABLE memory_search USING fts5(id UNINDEXED, app_name, title, link, text,
  content='memories', content_rowid='rowid', tokenize='unicode61');
INSERT INTO memory_search(memory_search) VALUES('rebuild');
CREATE TRIGGER memories_insert AFTER INSERT ON memories BEGIN
  INSERT INTO memory_search(rowid, id, app_name, title, link, text)
    VALUES (new.rowid, new.id, new.app_name, new.title, new.link, new.text);
  INSERT INTO memory_slots VALUES ()"_s +
           newSlot + uR"(, new.app_name, 1, new.bytes)
    ON CONFLICT (slot, app_name) DO UPDATE SET count = count + 1, bytes = bytes + excluded.bytes;
END;
CREATE TRIGGER memories_delete AFTER DELETE ON memories BEGIN
  INSERT INTO memory_search(memory_search, rowid, id, app_name, title, link, text)
    VALUES ('delete', old.rowid, old.id, old.app_name, old.title, old.link, old.text);
  UPDATE memory_slots SET count = count - 1, bytes = bytes - old.bytes
    WHERE slot = )"_s +
           oldSlot + uR"( AND app_name = old.app_name;
  DELETE FROM memory_slots WHERE slot = )"_s +
           oldSlot + uR"( AND app_name = old.app_name AND count = 0;
END;)"_s;
}

// The list of applications and their identities, answered from the index alone.
QString version4()
{
    return u"CREATE INDEX IF NOT EXISTS memories_app ON memories(app_name, bundle_id);"_s;
}

QString version5()
{
    return uR"(CREATE TABLE IF NOT EXISTS embeddings (
  id TEXT NOT NULL, model TEXT NOT NULL, vector BLOB NOT NULL,
  PRIMARY KEY (id, model)
) WITHOUT ROWID;
CREATE TRIGGER IF NOT EXISTS memories_embedding_delete AFTER DELETE ON memories BEGIN
  DELETE FROM embeddings WHERE id = old.id;
END;)"_s;
}

qint64 storedVersion(Database& database)
{
    Statement asked = database.statement(u"PRAGMA user_version"_s);
    return asked.step() ? asked.integer(0) : 0;
}

void run(const Migration& migration, Database& database)
{
    database.transaction([&] {
        database.execute(migration.sql);
        database.execute(u"PRAGMA user_version = %1;"_s.arg(migration.number));
    });
    // A migration can rewrite the whole index, and the log would keep that size.
    database.tryExecute(u"PRAGMA wal_checkpoint(TRUNCATE)"_s);
}

} // namespace

void Schema::prepare(Database& database)
{
    database.execute(baseScript());
}

void Schema::upgrade(Database& database)
{
    const qint64 version = storedVersion(database);
    const std::array migrations = {Migration{2, version2()}, Migration{3, version3()},
                                   Migration{4, version4()}, Migration{kVersion, version5()}};
    for (const Migration& migration : migrations) {
        if (version < migration.number)
            run(migration, database);
    }
}

void Schema::makeIndexReadable(Database& database)
{
    const bool isReadable =
        database.tryExecute(u"SELECT 1 FROM memory_search WHERE memory_search MATCH 'a' LIMIT 1"_s);
    if (isReadable || !database.errorMessage().startsWith(u"invalid fts5 file format"_s))
        return;
    // It is not even built anew as long as it does not say that it has the form known here.
    database.transaction([&] {
        database.execute(u"UPDATE memory_search_config SET v = 4 WHERE k = 'version';"
                         "INSERT INTO memory_search(memory_search) VALUES('rebuild')"_s);
    });
}

int Schema::userVersion(Database& database)
{
    try {
        return static_cast<int>(storedVersion(database));
    } catch (const StoreError&) {
        return 0;
    }
}

QString Schema::slot(const QString& t)
{
    // SQL's cast rounds toward zero, so one is taken off for negative times with a remainder.
    return u"(CAST(%1 / 900 AS INTEGER) - (%1 < CAST(%1 / 900 AS INTEGER) * 900))"_s.arg(t);
}

} // namespace mossbank
