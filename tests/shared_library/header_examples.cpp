// The examples in the comments of the public headers, which header_examples.awk finds there. They are compiled and not
// run, since the host that they belong to does not exist.
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <syslog.h>
#include <utility>
#include <vector>

#include "cfg_ini/cfg_cached_value.h"
#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_settings_sources.h"
#include "cfg_run_report/cfg_run_report.h"
#include "platform/err/err.h"
#include "platform/fio/fio.h"
#include "platform/gen/gen.h"
#include "platform/mem/mem.h"
#include "platform/thr/thr.h"
#include "platform/ver/ver.h"

// What the examples expect of their host.
void print(const std::string& text);
void warn(const std::string& text);
void route(int effort);

#include "header_examples.inc"
