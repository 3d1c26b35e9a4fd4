#pragma once

#include "yon/mt/noncopyable.h"
#include "yon/mt/shared.h"
#include "yon/mt/type_text.h"

namespace yon {

/// Shared owner of one handle of the operating system: closes it at the end if it is to be closed and not null.
struct YON_API HandleWrapper : Shared, private noncopyable {
    HandleWrapper(void * handle, bool close) noexcept : handle_(handle), close_(close) {}
    ~HandleWrapper() override;

    void * handle() const noexcept { return handle_; }

private:
    void * const handle_;
    bool const close_;
};

template <>
inline constexpr std::string_view classWord<HandleWrapper> = "struct ";

}  // namespace yon
