// 1,000 settings in 20 sections, written and read at random, in both stores and in those of others. Every
// write has reached the system when it is done; QSettings and GKeyFile rewrite their whole file for that, and
// read from memory. BareFile opens, reads and closes, or writes over, a file of the tree and does nothing
// else. BareFileTwice reads as BareFile does, but with the five calls that the tree's promise about
// half-written texts takes.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QSettings>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <glib.h>
#include <memory>
#include <random>
#include <sqlite3.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "qmt/config/app_config.h"
#include "qmt/config/file_tree_config.h"
#include "qmt/platform/registry.h"

namespace {

namespace fs = std::filesystem;

constexpr int sectionCount = 20;
constexpr int entriesInSection = 50;

// A directory for the settings of one run.
class Place {
public:
    Place() {
        std::string name = (fs::temp_directory_path() / "qmt_settings_XXXXXX").string();
        directory = ::mkdtemp(name.data());
    }

    Place(Place const&) = delete;
    Place& operator=(Place const&) = delete;

    ~Place() { fs::remove_all(directory); }

    std::string Path(char const* name) const { return (directory / name).string(); }

    QMT::String Text(char const* name) const { return QMT::DecodeFromUTF8(Path(name).c_str(), false); }

private:
    fs::path directory;
};

// ---- the stores, with names in the form that each of them takes

class FileTree {
public:
    using Name = QMT::String;

    explicit FileTree(Place const& place) : settings(place.Text("")) {}

    static Name Make(std::string const& name) { return QMT::DecodeFromUTF8(name.c_str(), false); }

    bool Write(Name const& section, Name const& entry, Name const& value) {
        std::unique_ptr<QMT::ErrorInfo> const error(settings.WriteProfileStr(section, entry, value));
        return !error;
    }

    bool Read(Name const& section, Name const& entry) {
        return !settings.GetString(section, entry, Name()).IsEmpty();
    }

private:
    QMT::FileTreeConfig settings;
};

class Registry {
public:
    using Name = QMT::String;

    explicit Registry(Place const& place)
        : registry(QMT::MakeDatabaseRegistry(place.Text("user.db"), place.Text("machine.db"))) {
        QMT::UseRegistry(registry.get());
        settings = std::make_unique<QMT::AppConfig>(u"Maker", u"Program", u"", false);
        std::unique_ptr<QMT::ErrorInfo> const shownByEveryWrite(settings->CheckExists(false));
    }

    Registry(Registry const&) = delete;
    Registry& operator=(Registry const&) = delete;

    ~Registry() {
        settings.reset();
        QMT::UseRegistry(nullptr);
    }

    static Name Make(std::string const& name) { return FileTree::Make(name); }

    bool Write(Name const& section, Name const& entry, Name const& value) {
        std::unique_ptr<QMT::ErrorInfo> const error(settings->WriteProfileStr(section, entry, value));
        return !error;
    }

    bool Read(Name const& section, Name const& entry) {
        return !settings->GetString(section, entry, Name()).IsEmpty();
    }

private:
    std::unique_ptr<QMT::Registry> registry;
    std::unique_ptr<QMT::AppConfig> settings;
};

class PlainSqlite {
public:
    using Name = std::string;

    explicit PlainSqlite(Place const& place) {
        sqlite3_open(place.Path("plain.db").c_str(), &database);
        sqlite3_exec(
            database,
            "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;"
            "CREATE TABLE settings (section TEXT, entry TEXT, value TEXT, PRIMARY KEY (section, entry))"
            "WITHOUT ROWID",
            nullptr, nullptr, nullptr);
        sqlite3_prepare_v2(
            database,
            "INSERT INTO settings VALUES (?, ?, ?) ON CONFLICT DO UPDATE SET value = excluded.value", -1,
            &writing, nullptr);
        sqlite3_prepare_v2(database, "SELECT value FROM settings WHERE section = ? AND entry = ?", -1,
                           &reading, nullptr);
    }

    PlainSqlite(PlainSqlite const&) = delete;
    PlainSqlite& operator=(PlainSqlite const&) = delete;

    ~PlainSqlite() {
        sqlite3_finalize(writing);
        sqlite3_finalize(reading);
        sqlite3_close(database);
    }

    static Name Make(std::string const& name) { return name; }

    bool Write(Name const& section, Name const& entry, Name const& value) {
        Bind(writing, 1, section);
        Bind(writing, 2, entry);
        Bind(writing, 3, value);
        bool const isWritten = sqlite3_step(writing) == SQLITE_DONE;
        sqlite3_reset(writing);
        return isWritten;
    }

    bool Read(Name const& section, Name const& entry) {
        Bind(reading, 1, section);
        Bind(reading, 2, entry);
        bool const isThere = sqlite3_step(reading) == SQLITE_ROW;
        Name const value = isThere ? reinterpret_cast<char const*>(sqlite3_column_text(reading, 0)) : "";
        sqlite3_reset(reading);
        return !value.empty();
    }

private:
    static void Bind(sqlite3_stmt* statement, int parameter, Name const& text) {
        sqlite3_bind_text(statement, parameter, text.c_str(), -1, SQLITE_STATIC);
    }

    sqlite3* database = nullptr;
    sqlite3_stmt* writing = nullptr;
    sqlite3_stmt* reading = nullptr;
};

class QtSettings {
public:
    using Name = QString;

    explicit QtSettings(Place const& place)
        : settings(QString::fromStdString(place.Path("qt.ini")), QSettings::IniFormat) {}

    static Name Make(std::string const& name) { return QString::fromStdString(name); }

    bool Write(Name const& section, Name const& entry, Name const& value) {
        settings.setValue(section + u'/' + entry, value);
        settings.sync();
        return settings.status() == QSettings::NoError;
    }

    bool Read(Name const& section, Name const& entry) {
        return !settings.value(section + u'/' + entry).toString().isEmpty();
    }

private:
    QSettings settings;
};

class KeyFile {
public:
    using Name = std::string;

    explicit KeyFile(Place const& place) : path(place.Path("keys.ini")), file(g_key_file_new()) {}

    KeyFile(KeyFile const&) = delete;
    KeyFile& operator=(KeyFile const&) = delete;

    ~KeyFile() { g_key_file_free(file); }

    static Name Make(std::string const& name) { return name; }

    bool Write(Name const& section, Name const& entry, Name const& value) {
        g_key_file_set_string(file, section.c_str(), entry.c_str(), value.c_str());
        return g_key_file_save_to_file(file, path.c_str(), nullptr) != 0;
    }

    bool Read(Name const& section, Name const& entry) {
        char* const value = g_key_file_get_string(file, section.c_str(), entry.c_str(), nullptr);
        bool const isThere = value != nullptr;
        g_free(value);
        return isThere;
    }

private:
    std::string path;
    GKeyFile* file;
};

class BareFile {
public:
    using Name = std::string;

    explicit BareFile(Place const& place) : directory(place.Path("Configuration")) {
        fs::create_directory(directory);
    }

    static Name Make(std::string const& name) { return name; }

    bool Write(Name const& section, Name const& entry, Name const& value) {
        if (fs::path const path = directory / section; !fs::exists(path))
            fs::create_directory(path);
        int const file = ::open(PathOf(section, entry).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
        bool const isWritten = ::write(file, value.data(), value.size()) > 0;
        return ::close(file) == 0 && isWritten;
    }

    bool Read(Name const& section, Name const& entry) {
        char bytes[4096];
        int const file = ::open(PathOf(section, entry).c_str(), O_RDONLY | O_CLOEXEC);
        bool const isRead = ::read(file, bytes, sizeof(bytes)) > 0;
        return ::close(file) == 0 && isRead;
    }

protected:
    std::string PathOf(Name const& section, Name const& entry) const {
        return directory.native() + '/' + section + '/' + entry + ".cfg";
    }

    fs::path directory;
};

class BareFileTwice : public BareFile {
public:
    using BareFile::BareFile;

    bool Read(Name const& section, Name const& entry) {
        char bytes[2][4096];
        int const file = ::open(PathOf(section, entry).c_str(), O_RDONLY | O_CLOEXEC);
        ssize_t const first = ::pread(file, bytes[0], sizeof bytes[0], 0);
        ::lseek(file, 0, SEEK_DATA); // waits for a writer
        ssize_t const second = ::pread(file, bytes[1], sizeof bytes[1], 0);
        bool const agree = first > 0 && first == second &&
                           std::memcmp(bytes[0], bytes[1], static_cast<std::size_t>(first)) == 0;
        return ::close(file) == 0 && agree;
    }
};

// ---- what is measured

template <class Store>
struct Setting {
    typename Store::Name section;
    typename Store::Name entry;
    typename Store::Name values[2]; // taken in turn: stores may pass over a write that changes nothing
};

// All settings in an order of chance, the same for each store.
template <class Store>
std::vector<Setting<Store>> Shuffled() {
    std::vector<Setting<Store>> settings;
    for (int section = 0; section < sectionCount; ++section)
        for (int entry = 0; entry < entriesInSection; ++entry) {
            std::string const number = std::to_string(section * entriesInSection + entry);
            settings.push_back({Store::Make("section" + std::to_string(section)),
                                Store::Make("entry" + number),
                                {Store::Make("the value " + number), Store::Make("a setting " + number)}});
        }
    std::shuffle(settings.begin(), settings.end(), std::mt19937(1));
    return settings;
}

// use(store, setting, turn) for one setting after the other, once all are written.
template <class Store, class Use>
void Run(benchmark::State& state, Use use) {
    Place const place;
    Store store(place);
    auto const settings = Shuffled<Store>();
    bool isRight = true;
    for (auto const& setting : settings)
        isRight = store.Write(setting.section, setting.entry, setting.values[0]) && isRight;
    std::size_t next = 0;
    std::size_t turn = 1;
    for (auto _ : state) {
        isRight = use(store, settings[next], turn) && isRight;
        next = (next + 1) % settings.size();
        turn = next == 0 ? 1 - turn : turn;
    }
    if (!isRight)
        state.SkipWithError("a setting was not written or not found");
}

template <class Store>
void Read(benchmark::State& state) {
    Run<Store>(state, [](Store& store, auto const& setting, std::size_t) {
        return store.Read(setting.section, setting.entry);
    });
}

template <class Store>
void Write(benchmark::State& state) {
    Run<Store>(state, [](Store& store, auto const& setting, std::size_t turn) {
        return store.Write(setting.section, setting.entry, setting.values[turn]);
    });
}

BENCHMARK_TEMPLATE(Read, BareFile);
BENCHMARK_TEMPLATE(Read, BareFileTwice);
BENCHMARK_TEMPLATE(Read, FileTree);
BENCHMARK_TEMPLATE(Read, PlainSqlite);
BENCHMARK_TEMPLATE(Read, Registry);
BENCHMARK_TEMPLATE(Read, QtSettings);
BENCHMARK_TEMPLATE(Read, KeyFile);
BENCHMARK_TEMPLATE(Write, BareFile);
BENCHMARK_TEMPLATE(Write, FileTree);
BENCHMARK_TEMPLATE(Write, PlainSqlite);
BENCHMARK_TEMPLATE(Write, Registry);
BENCHMARK_TEMPLATE(Write, QtSettings);
BENCHMARK_TEMPLATE(Write, KeyFile);

} // namespace
