#include "FaultyFiles.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <algorithm>
#include <map>
#include <new>
#include <random>
#include <sqlite3.h>
#include <vector>

namespace corvane::torture {

namespace {

constexpr qint64 sectorBytes = 512;

/// A write, or a new size if `isTruncation` is set.
struct Change {
    qint64 at = 0;
    QByteArray data;
    bool isTruncation = false;
};

/// The part of a file that is synced to disk, and the changes since.
struct OnDisk {
    QByteArray content;
    std::vector<Change> changes;
};

struct State {
    sqlite3_vfs* real = nullptr;
    std::map<QByteArray, OnDisk> files;
    Fault fault = Fault::PowerCut;
    qint64 failsAt = 0;
    qint64 operations = 0;
    bool hasFailed = false;
};

State& state()
{
    static State instance;
    return instance;
}

struct File {
    sqlite3_file base;
    OnDisk* disk; // null for temporary files
    sqlite3_file* real; // stored directly after this struct
};

File* mine(sqlite3_file* file)
{
    return reinterpret_cast<File*>(file);
}

sqlite3_file* realOf(sqlite3_file* file)
{
    return mine(file)->real;
}

bool isWithoutPower()
{
    return state().hasFailed && state().fault == Fault::PowerCut;
}

/// Counts an operation; returns true if it must fail.
bool fails()
{
    State& now = state();
    ++now.operations;
    now.hasFailed = now.hasFailed || (now.failsAt > 0 && now.operations >= now.failsAt);
    return now.hasFailed;
}

int failureCode()
{
    return state().fault == Fault::FullDisk ? SQLITE_FULL : SQLITE_IOERR_WRITE;
}

void resize(QByteArray& content, qint64 size)
{
    const qsizetype before = content.size();
    content.resize(size);
    if (size > before)
        std::fill(content.begin() + before, content.end(), '\0');
}

void apply(QByteArray& content, const Change& change)
{
    if (change.isTruncation)
        return resize(content, change.at);
    resize(content, std::max<qint64>(content.size(), change.at + change.data.size()));
    std::copy(change.data.begin(), change.data.end(), content.begin() + change.at);
}

void note(sqlite3_file* file, Change change)
{
    if (OnDisk* disk = mine(file)->disk)
        disk->changes.push_back(std::move(change));
}

int closeFile(sqlite3_file* file)
{
    return realOf(file)->pMethods->xClose(realOf(file));
}

int readFile(sqlite3_file* file, void* to, int size, sqlite3_int64 at)
{
    return isWithoutPower() ? SQLITE_IOERR_READ : realOf(file)->pMethods->xRead(realOf(file), to, size, at);
}

int writeFile(sqlite3_file* file, const void* from, int size, sqlite3_int64 at)
{
    if (isWithoutPower())
        return failureCode();
    const bool failed = fails();
    if (!failed || isWithoutPower()) // a write interrupted by a power cut may be partly done
        note(file, { at, QByteArray(static_cast<const char*>(from), size), false });
    return failed ? failureCode() : realOf(file)->pMethods->xWrite(realOf(file), from, size, at);
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size)
{
    if (fails() && isWithoutPower()) // truncation works on a full disk
        return SQLITE_IOERR_TRUNCATE;
    note(file, { size, {}, true });
    return realOf(file)->pMethods->xTruncate(realOf(file), size);
}

int syncFile(sqlite3_file* file, int /*flags*/)
{
    if (fails() && isWithoutPower())
        return SQLITE_IOERR_FSYNC;
    if (OnDisk* disk = mine(file)->disk) {
        for (const Change& change : disk->changes)
            apply(disk->content, change);
        disk->changes.clear();
    }
    return SQLITE_OK;
}

int sizeOfFile(sqlite3_file* file, sqlite3_int64* size)
{
    return realOf(file)->pMethods->xFileSize(realOf(file), size);
}

int lockFile(sqlite3_file* file, int level)
{
    return realOf(file)->pMethods->xLock(realOf(file), level);
}

int unlockFile(sqlite3_file* file, int level)
{
    return realOf(file)->pMethods->xUnlock(realOf(file), level);
}

int isFileReserved(sqlite3_file* file, int* result)
{
    return realOf(file)->pMethods->xCheckReservedLock(realOf(file), result);
}

int controlFile(sqlite3_file* file, int operation, void* argument)
{
    if (operation == SQLITE_FCNTL_SIZE_HINT || operation == SQLITE_FCNTL_CHUNK_SIZE)
        return SQLITE_OK; // both would write without being recorded
    return realOf(file)->pMethods->xFileControl(realOf(file), operation, argument);
}

int sectorSize(sqlite3_file* /*file*/)
{
    return sectorBytes;
}

int characteristics(sqlite3_file* file)
{
    return realOf(file)->pMethods->xDeviceCharacteristics(realOf(file));
}

int mapShared(sqlite3_file* file, int page, int size, int extends, void volatile** to)
{
    return realOf(file)->pMethods->xShmMap(realOf(file), page, size, extends, to);
}

int lockShared(sqlite3_file* file, int offset, int count, int flags)
{
    return realOf(file)->pMethods->xShmLock(realOf(file), offset, count, flags);
}

void barrier(sqlite3_file* file)
{
    realOf(file)->pMethods->xShmBarrier(realOf(file));
}

int unmapShared(sqlite3_file* file, int deletes)
{
    return realOf(file)->pMethods->xShmUnmap(realOf(file), deletes);
}

const sqlite3_io_methods methods { 2, closeFile, readFile, writeFile, truncateFile, syncFile, sizeOfFile, lockFile,
    unlockFile, isFileReserved, controlFile, sectorSize, characteristics, mapShared, lockShared, barrier, unmapShared,
    nullptr, nullptr };

QByteArray contentOf(const QByteArray& path)
{
    QFile file(QFile::decodeName(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

int openFile(sqlite3_vfs* /*vfs*/, sqlite3_filename name, sqlite3_file* file, int flags, int* outFlags)
{
    file->pMethods = nullptr;
    if (isWithoutPower())
        return SQLITE_CANTOPEN;
    auto* wrapped = new (file) File { {}, nullptr, reinterpret_cast<sqlite3_file*>(mine(file) + 1) };
    if (name && (flags & (SQLITE_OPEN_MAIN_DB | SQLITE_OPEN_WAL | SQLITE_OPEN_MAIN_JOURNAL)) != 0) {
        const auto [found, isNew] = state().files.try_emplace(name);
        if (isNew)
            found->second.content = contentOf(name);
        wrapped->disk = &found->second;
    }
    const int code = state().real->xOpen(state().real, name, wrapped->real, flags, outFlags);
    if (wrapped->real->pMethods)
        wrapped->base.pMethods = &methods;
    return code;
}

/// Counts as durable at once: filesystems journal their metadata.
int deleteFile(sqlite3_vfs* /*vfs*/, const char* name, int syncs)
{
    if (isWithoutPower())
        return SQLITE_IOERR_DELETE;
    if (const auto found = state().files.find(name); found != state().files.end())
        found->second = {};
    return state().real->xDelete(state().real, name, syncs);
}

/// Locks are held by this same thread, so sleeping would not release them.
int noSleep(sqlite3_vfs* /*vfs*/, int microseconds)
{
    return microseconds;
}

/// Each sector is lost, written, or partly written.
void applyPartly(QByteArray& content, const Change& change, std::mt19937& random)
{
    if (change.isTruncation) {
        if (random() % 2 == 0)
            apply(content, change);
        return;
    }
    for (qint64 done = 0; done < change.data.size();) {
        const qint64 at = change.at + done;
        const qint64 size = std::min(sectorBytes - at % sectorBytes, change.data.size() - done);
        const bool isTorn = random() % 16 == 0;
        if (isTorn || random() % 2 == 0)
            apply(content, { at, change.data.mid(done, isTorn ? qint64(random() % size) : size), false });
        done += size;
    }
}

}

FaultyFiles::FaultyFiles(Fault fault, qint64 failsAt)
{
    static sqlite3_vfs vfs;
    static sqlite3_vfs* const real = sqlite3_vfs_find(nullptr);
    state() = { real, {}, fault, failsAt, 0, false };
    vfs = *real;
    vfs.zName = "faulty";
    vfs.szOsFile = int(sizeof(File)) + real->szOsFile;
    vfs.xOpen = openFile;
    vfs.xDelete = deleteFile;
    vfs.xSleep = noSleep;
    sqlite3_vfs_register(&vfs, 1);
}

FaultyFiles::~FaultyFiles()
{
    sqlite3_vfs_register(state().real, 1);
}

qint64 FaultyFiles::operations() const
{
    return state().operations;
}

bool FaultyFiles::hasFailed() const
{
    return state().hasFailed;
}

void FaultyFiles::mend()
{
    state().failsAt = 0;
    state().hasFailed = false;
}

void FaultyFiles::losePower(quint32 seed)
{
    std::mt19937 random(seed);
    enum { NothingKept, AllKept, SomeKept };
    const auto way = random() % 3;
    for (auto& [name, disk] : state().files) {
        for (const Change& change : disk.changes) {
            if (way == AllKept)
                apply(disk.content, change);
            else if (way == SomeKept)
                applyPartly(disk.content, change, random);
        }
        QFile file(QFile::decodeName(name));
        if (file.exists() && file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            file.write(disk.content);
        QFile::remove(QFile::decodeName(name) + QStringLiteral("-shm"));
    }
    state().files.clear();
    mend();
}

}
