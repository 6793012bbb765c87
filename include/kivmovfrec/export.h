// KMF_API: what the shared library exports.
//
// The library is compiled with hidden visibility, so a declaration a host may use must carry
// KMF_API or the host will not link against it. In every header of include/kivmovfrec, put it
//   - between `class`/`struct` and the name of every class or struct defined there
//     (`class KMF_API DbError : public std::runtime_error`): its out-of-line members, vtable
//     and typeinfo are exported, so hosts can call it, derive from it and catch it;
//   - before every free function the library defines (`KMF_API void InstallSchema(...)`).
// Inline functions, templates, enums and forward declarations need nothing. Internal code
// (src/) never uses it: whatever it declares stays inside the library.
//
// On ELF the same attribute serves the library and its consumers, and the static library
// accepts it unchanged.
#pragma once

#if defined(__GNUC__) || defined(__clang__)
#define KMF_API __attribute__((visibility("default")))
#else
#define KMF_API
#endif
