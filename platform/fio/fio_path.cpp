#include "platform/fio/fio.h"

#include <algorithm>

FIO_PATH::FIO_PATH() = default;

FIO_PATH::FIO_PATH(const char* path)
{
    *this = std::string(path);
}

FIO_PATH& FIO_PATH::operator=(const std::string& path)
{
    const std::size_t name_start = path.rfind('/') + 1; // npos + 1 is 0: no directory
    filename_part = path.substr(name_start);
    directory_part = path.substr(0, name_start);
    join();
    return *this;
}

void FIO_PATH::filename(const std::string& name)
{
    filename_part = name;
    join();
}

void FIO_PATH::directory(const std::string& dir)
{
    directory_part = dir;
    join();
}

void FIO_PATH::base(const std::string& name)
{
    const std::size_t dot = filename_part.rfind('.');
    filename_part = dot == std::string::npos ? name : name + filename_part.substr(dot);
    join();
}

void FIO_PATH::extension(const std::string& ext, const std::string& other)
{
    const std::string& chosen = ext.empty() ? other : ext;
    filename_part.resize(std::min(filename_part.rfind('.'), filename_part.size()));
    if (!chosen.empty())
        filename_part += "." + chosen;
    join();
}

std::string FIO_PATH::fullpath() const
{
    return full;
}

FIO_PATH::operator std::string() const
{
    return full;
}

FIO_PATH::operator const char*() const
{
    return full.c_str();
}

void FIO_PATH::join()
{
    full = directory_part;
    if (!full.empty() && full.back() != '/')
        full += '/';
    full += filename_part;
}
