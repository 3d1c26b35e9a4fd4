// A module that logs, to be loaded and unloaded together with the library.
#include "yon/log/logger_factory.h"
#include "yon/log/macros.h"

extern "C" YON_MODULE_API void logFromModule(char const * file) {
    yon::logger & log = yon::logger_factory::instance("module");
    log.filename(file);
    YON_LOG_DATA(log, "cached");
    YON_LOG_INFO(log, "written");
    YON_LOG_DATA(log, "left to the end");
}
