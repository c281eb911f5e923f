# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""Programs of ARM processors on a machine with another one, below the emulator qemu-user.

The kernel starts the emulator for a program of the other processor, in every folder that is the root
of a system. Buses, shells and tools can therefore be those of the machine's own processor."""

import ctypes
import errno
import platform
import shutil
from pathlib import Path

from debian import run

# By the name of Debian's architecture: the processor, and the prefix of the cross compiler.
PROCESSORS = {
    "arm64": ("aarch64", "aarch64-linux-gnu"),
    "armhf": ("arm", "arm-linux-gnueabihf"),
}

# The tests that are left out, with the reasons. All others run as on a PC.
LEFT_OUT = {
    "packaged-build": "it configures a build for the machine's own processor, without its libraries",
}

# How many times longer tests wait for what has to come, and after how long they count as hanging.
SLOWER = 6
TEST_SECONDS = 300 * SLOWER

_FORMATS = Path("/proc/sys/fs/binfmt_misc")


def missing(architecture):
    """Returns what this machine lacks to run the programs of an architecture; empty if nothing."""
    processor, _ = PROCESSORS[architecture]
    if platform.machine() == processor:
        return []
    if shutil.which("update-binfmts") is None or shutil.which(f"qemu-{processor}-static") is None:
        return ["qemu-user-static and binfmt-support"]
    if not (_FORMATS / "status").exists():
        run("mount", "-t", "binfmt_misc", "binfmt_misc", _FORMATS)
    if not (_FORMATS / f"qemu-{processor}").exists():
        run("update-binfmts", "--enable", f"qemu-{processor}")
    return []


class _Instruction(ctypes.Structure):
    _fields_ = [
        ("code", ctypes.c_uint16),
        ("if_true", ctypes.c_uint8),
        ("if_false", ctypes.c_uint8),
        ("value", ctypes.c_uint32),
    ]


class _Filter(ctypes.Structure):
    _fields_ = [("length", ctypes.c_uint16), ("instructions", ctypes.POINTER(_Instruction))]


_LOAD, _JUMP_IF_EQUAL, _RETURN = 0x20, 0x15, 0x06
_NUMBER, _FIRST_ARGUMENT = 0, 16  # In struct seccomp_data.
_WAITID = {"x86_64": 247, "aarch64": 95}.get(platform.machine())
_P_PIDFD = 3
_ALLOW, _REFUSE = 0x7FFF0000, 0x00050000 | errno.EINVAL
_INSTRUCTIONS = (_Instruction * 6)(
    _Instruction(_LOAD, 0, 0, _NUMBER),
    _Instruction(_JUMP_IF_EQUAL, 0, 3, _WAITID or 0),
    _Instruction(_LOAD, 0, 0, _FIRST_ARGUMENT),
    _Instruction(_JUMP_IF_EQUAL, 0, 1, _P_PIDFD),
    _Instruction(_RETURN, 0, 0, _REFUSE),
    _Instruction(_RETURN, 0, 0, _ALLOW),
)
_WITHOUT_PIDFDS = _Filter(len(_INSTRUCTIONS), _INSTRUCTIONS)
_C = ctypes.CDLL(None, use_errno=True)
_PR_SET_SECCOMP, _SECCOMP_MODE_FILTER = 22, 2


def refuse_pidfds():
    """Lets this process and its children wait for no process by a descriptor, as on kernels before
    5.4. To be called between fork and exec, as root.

    The emulator cannot make such a descriptor when it forks. Qt asks whether it may wait for one
    before it relies on that, and takes its older way otherwise."""
    if _C.prctl(_PR_SET_SECCOMP, _SECCOMP_MODE_FILTER, ctypes.byref(_WITHOUT_PIDFDS)) != 0:
        raise OSError(ctypes.get_errno(), "The filter of system calls was refused.")
