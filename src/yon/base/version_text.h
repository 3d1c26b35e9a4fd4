// The name and version of this library.
#pragma once

#define YON_VERSION_TEXT "zuvyon 1.5.8-01"
