// Small utility classes the library is built on: allocation base, string,
// mutex and thread ID.
#ifndef ZO_UTILS_H
#define ZO_UTILS_H

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>

#include "ZoExport.h"

// Base of every library object. Its allocation functions never throw: a
// failed allocation makes the new-expression yield null, which the callers
// that allocate (Clone, CreatePixelType, the flat interface) report as null.
class ZO_API ZoObject {
public:
    static void* operator new(std::size_t size) noexcept;
    static void operator delete(void* p) noexcept;
    static void* operator new[](std::size_t size) noexcept;
    static void operator delete[](void* p) noexcept;
};

// A text with assignment, append and an ASCII view.
class ZO_API ZoString : public ZoObject {
public:
    ZoString() = default;
    ZoString(const char* text) : mText(text ? text : "") {}
    ZoString& operator=(const char* text) { mText = text ? text : ""; return *this; }
    ZoString& operator+=(const char* text) { if (text) mText += text; return *this; }
    ZoString& Append(const char* text) { return *this += text; }
    const char* c_str_ascii() const { return mText.c_str(); }
    std::size_t Length() const { return mText.size(); }
    bool operator==(const char* text) const { return text && mText == text; }

private:
    std::string mText;
};

// A mutex with Enter and Leave.
class ZO_API ZoGate : public ZoObject {
public:
    void Enter() { mMutex.lock(); }
    void Leave() { mMutex.unlock(); }

private:
    std::mutex mMutex;
};

// Holds a gate for the lifetime of a scope.
class ZoGateHold {
public:
    explicit ZoGateHold(ZoGate& gate) : mGate(gate) { mGate.Enter(); }
    ~ZoGateHold() { mGate.Leave(); }
    ZoGateHold(const ZoGateHold&) = delete;
    ZoGateHold& operator=(const ZoGateHold&) = delete;

private:
    ZoGate& mGate;
};

class ZO_API ZoThread {
public:
    // Unsigned 32-bit ID of the calling thread, unique among live threads.
    static std::uint32_t GetCurrentThreadID();
};

#endif
