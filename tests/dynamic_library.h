// Loading of modules, for tests.
#pragma once

/// A loaded module. Ends the program when there is none.
class DynamicLibrary {
public:
    explicit DynamicLibrary(char const * file);
    DynamicLibrary(DynamicLibrary const &) = delete;
    DynamicLibrary & operator=(DynamicLibrary const &) = delete;
    ~DynamicLibrary();

    void * function(char const * name) const;

private:
    void * handle_;
};
