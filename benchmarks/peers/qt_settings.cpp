#include <QSettings>
#include <QString>
#include <QVariant>

#include <filesystem>
#include <memory>

#include "benchmarks/peers/peers.h"
#include "benchmarks/store_workloads.h"

namespace
{
QString key(const std::string& name)
{
    return QString::fromStdString(name);
}

QString key(const char* name)
{
    return QString::fromLatin1(name);
}

std::unique_ptr<QSettings> opened(const std::string& path)
{
    auto settings = std::make_unique<QSettings>(QString::fromStdString(path), QSettings::IniFormat);
    settings->beginGroup(QStringLiteral("settings"));
    return settings;
}

struct QT_SETTINGS
{
    static void load(const std::string& path)
    {
        settings = opened(path);
        settings->contains(QString::fromLatin1(hot_name)); // a section is parsed when it is first asked
        loaded = path;
    }
    static void clear()
    {
        settings.reset();
        // A file that has not changed would be taken from a cache when it is opened again.
        std::filesystem::last_write_time(loaded, std::filesystem::last_write_time(loaded) + std::chrono::seconds(1));
    }
    static bool read_bool(const auto& name)
    {
        return settings->value(key(name)).toBool();
    }
    static int read_int(const auto& name)
    {
        return settings->value(key(name)).toInt();
    }
    static QString read_text(const auto& name)
    {
        return settings->value(key(name)).toString();
    }
    static double read_double(const auto& name)
    {
        return settings->value(key(name)).toDouble();
    }

private:
    static inline std::unique_ptr<QSettings> settings;
    static inline std::string loaded;
};

// On a copy of the file: what was set is written back in the end.
void set_existing_in_copy(benchmark::State& state)
{
    static const std::unique_ptr<QSettings> copy = []
    {
        const std::string path = scratch_directory() + "/copy.ini";
        std::filesystem::copy_file(file_for_lookups().path, path);
        return opened(path);
    }();
    const QString name = QString::fromLatin1(hot_name);
    const QString values[] = {QStringLiteral("0"), QStringLiteral("1")};
    std::size_t turn = 0;
    for (auto _ : state)
        copy->setValue(name, values[++turn % 2]);
}
}

void add_rows_of_qt_settings(bool long_files)
{
    constexpr const char* who = "Qt QSettings";
    add_store_rows<QT_SETTINGS>(who, long_files);
    add_row(work_set_existing, who, set_existing_in_copy);
}
