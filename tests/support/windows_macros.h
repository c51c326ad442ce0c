// Stands in for <windows.h> in the check that public headers survive it, cmake/QmtHeaderChecks.cmake, which
// adds the names of operations.
#pragma once

#define min(a, b) (((a) < (b)) ? (a) : (b))
#define max(a, b) (((a) > (b)) ? (a) : (b))

#define interface struct
#define near
#define far
#define small char
#define CALLBACK __stdcall
#define CONST const
#define DELETE 0x00010000L
#define ERROR 0
#define IGNORE 0
#define IN
#define INFINITE 0xFFFFFFFF
#define NO_ERROR 0L
#define OPTIONAL
#define OUT
#define VOID void
#define Yield()
