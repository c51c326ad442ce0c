#!/usr/bin/env python3
"""Checks what the shared libraries export: check_exports.py FOLDER

FOLDER holds libqmtgenu.so and libqmtutilu.so. Everything exported must belong to namespace QMT, of the private
namespaces only what is listed here, and every operation of the ring must be there although the header defines
it inline.
"""

import re
import subprocess
import sys
from pathlib import Path

LIBRARIES = ("libqmtgenu.so", "libqmtutilu.so")

# Mangled names in namespace QMT, with its tables, type information, guards and thunks.
OURS = re.compile(r"_Z(T[VTCIS]|GV|T[hvc][n0-9_hv]*_)?NK?3QMT")

# What tests use of the private namespaces.
PRIVATE = re.compile(r"\bQMT::(platform|detail|scaling)::")
PRIVATE_AND_EXPORTED = {
    "QMT::platform::CurrentWaitBackend()",
    "QMT::platform::ForceWaitBackend(QMT::platform::WaitBackend)",
    "QMT::platform::accessRefused",
    "QMT::platform::badArgument",
    "QMT::platform::hasSubKeys",
    "QMT::platform::keyIsGone",
    "QMT::platform::noNameInText",
    "QMT::platform::noOpenKey",
    "QMT::platform::nothingThere",
    "QMT::platform::tooMuchData",
    "QMT::scaling::DoubleUp(QMT::scaling::Kernels const&, unsigned char const*, unsigned int, unsigned int, "
    "unsigned char*, QMT::RGBConversionType)",
    "QMT::scaling::Downsize(QMT::scaling::Kernels const&, unsigned char const*, unsigned int, unsigned int, "
    "unsigned int, unsigned int, unsigned char*, unsigned int, unsigned int, QMT::RGBConversionType, unsigned long)",
    "QMT::scaling::FindKernels(QMT::scaling::Level)",
}

RING = "QMT::RotatingFixedBuffers::"
RING_OPERATIONS = """
    RotatingFixedBuffers() RotatingFixedBuffers(int, unsigned long) ~RotatingFixedBuffers()
    SetProperties(int, unsigned long) ClearFlags() InternalBuffers() FixedBufferSize() const BufferCount() const
    SetEndReadNotifyRequired(QMT::CountingSemaphore*) SetEndWriteNotifyRequired(QMT::CountingSemaphore*)
    GetTraceName() const SetTraceName(QMT::String)
    Counts() const ZeroCounts()
    TestRead() TestSharedRead() BeginRead() BeginPartialRead(unsigned long&) ForPeekRead() ForPartialPeekRead(unsigned long&)
    ReadSwap(unsigned char**) PartialReadSwap(unsigned char**, unsigned long*) EndRead() ForceEndRead()
    TestWrite() BeginWrite() ForOverWrite() WriteReplace(unsigned char*)
    PartialWriteReplace(unsigned char*, unsigned long) WriteSwap(unsigned char**)
    PartialWriteSwap(unsigned char**, unsigned long*) EndWrite() PartialEndWrite(unsigned long)
"""


def ring_operations():
    """The lines above, cut where one signature ends and the next begins."""
    text = " ".join(RING_OPERATIONS.split())
    return [RING + signature for signature in re.findall(r"~?\w+\([^)]*\)(?: const)?", text)]


def output_of(*command, given=None):
    return subprocess.run(command, input=given, check=True, capture_output=True, text=True).stdout


def exported(library):
    """Maps each exported name of a library to its readable form."""
    lines = output_of("nm", "--dynamic", "--defined-only", "--format=posix", str(library)).splitlines()
    names = [line.split()[0] for line in lines]
    return dict(zip(names, output_of("c++filt", given="\n".join(names)).splitlines()))


def faults_of(symbols):
    """`symbols` maps each library to its exported names, those to their readable forms."""
    for library, names in symbols.items():
        for name, readable in sorted(names.items()):
            if not OURS.match(name):
                yield f"{library}: exports {readable}, which is not in namespace QMT"
            elif PRIVATE.match(readable) and readable not in PRIVATE_AND_EXPORTED:
                yield f"{library}: exports {readable}, which is private"
    for operation in ring_operations():
        if operation not in symbols["libqmtutilu.so"].values():
            yield f"libqmtutilu.so: does not export {operation}"


def main(folder):
    symbols = {library: exported(Path(folder) / library) for library in LIBRARIES}
    faults = list(faults_of(symbols))
    for fault in faults:
        print(fault)
    for library, names in symbols.items():
        print(f"{library}: {len(names)} symbols")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
