#include "yon/platform/console_input.h"

#include <conio.h>
#include <windows.h>

#include <cstdio>

namespace yon::platform {

bool inputReady() noexcept {
    if (stdin->_cnt > 0) return true;
    DWORD mode = 0;
    bool const isConsole = ::GetConsoleMode(::GetStdHandle(STD_INPUT_HANDLE), &mode) != FALSE;
    return !isConsole || ::_kbhit() != 0;
}

}  // namespace yon::platform
