# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""The tests, built for an ARM processor, and run below the emulator on the machine's own system."""

import re
import shutil
from collections import Counter

import emulation
from debian import digest, install_in, named, run_in, source_files

# These are loaded by what was built, or load it, and have to be of its architecture.
_OF_THE_HOST = ("qml-module-", "qmlscene", "qtwayland5")
# Tools that load what was built, from a package that has tools of the build as well.
_LOADERS = ("qmlplugindump", "qmltestrunner")
_LOADERS_PACKAGE = "qtdeclarative5-dev-tools"


def section(source, name):
    """Returns the packages in a section of tools/packages."""
    packages, found = [], False
    for line in (source / "tools/packages").read_text().splitlines():
        line = line.partition("#")[0].strip()
        if line.startswith("["):
            found = line == f"[{name}]"
        elif found and line:
            packages.append(line)
    return packages


class EmulatedTests:
    """The tests of a checkout for an architecture."""

    def __init__(self, cache, source, architecture):
        self._cache = cache
        self._source = source
        self._architecture = architecture
        self._folder = None
        self.passed = 0  # Functions of tests, of all runs.

    def system(self):
        """Returns a system with what the tests are built and run with."""
        wanted = [
            f"{name}:{self._architecture}" if name.startswith(_OF_THE_HOST) else name
            for name in section(self._source, "running") + section(self._source, "testing")
        ]
        builder = self._cache.builder(self._source, self._architecture)

        def prepare(root):
            # oFono's package would start it as a service.
            policy = root / "usr/sbin/policy-rc.d"
            policy.write_text("#!/bin/sh\nexit 101\n")
            policy.chmod(0o755)
            install_in(root, *wanted)
            folder = root / "build/loaders"
            folder.mkdir()
            package = f"{_LOADERS_PACKAGE}:{self._architecture}"
            run_in(root, "env", "--chdir=/build/loaders", "apt-get", "download", package)
            run_in(root, "sh", "-c", "dpkg-deb -x /build/loaders/*.deb /build/loaders")
            for tool in _LOADERS:
                shutil.copy2(folder / "usr/lib/qt5/bin" / tool, root / "usr/lib/qt5/bin")
            # The linter, which is the machine's, reads what the modules say of their types.
            _, prefix = emulation.PROCESSORS[self._architecture]
            script = f'ln -s /usr/lib/{prefix}/qt5/qml/Qt* "$(qmake -query QT_INSTALL_QML)"'
            run_in(root, "sh", "-c", script)

        key = digest(builder.name, *wanted)
        return self._cache.derived(named("tester", self._architecture), key, prepare, builder)

    def build(self):
        """Builds the tests and what they need with the settings of the release preset."""
        processor, prefix = emulation.PROCESSORS[self._architecture]
        command = [
            *["cmake", "--preset=release", "-DCMAKE_SYSTEM_NAME=Linux"],
            f"-DCMAKE_SYSTEM_PROCESSOR={processor}",
            f"-DCMAKE_CXX_COMPILER={prefix}-g++",
            f"-DCMAKE_LIBRARY_ARCHITECTURE={prefix}",
            f"-DPKG_CONFIG_EXECUTABLE=/usr/bin/{prefix}-pkg-config",
            f"-DPARLEY_TEST_TIMEOUT={emulation.TEST_SECONDS}",
        ]
        system = self.system()

        def make(folder):
            script = '"$@" && cmake --build --preset=release --parallel 2'
            shell = ["sh", "-c", script, "sh", *command]
            self._cache.build(system, self._source, folder, *shell)

        contents = [(self._source / file).read_bytes() for file in source_files(self._source)]
        names = map(str, source_files(self._source))
        key = digest(system.name, *command, *names, *contents)
        self._folder = self._cache.entry(named("tests", self._architecture), key, make)

    def run(self, log, *which):
        """Runs tests, chosen by arguments of ctest, but those that are left out. Keeps what they
        print in a file. Returns how many there were."""
        build = "parley/build/release"
        left_out = "^(" + "|".join(emulation.LEFT_OUT) + ")$"
        command = [
            *["env", f"QTEST_FUNCTION_TIMEOUT={emulation.TEST_SECONDS * 1000}"],
            f"PARLEY_TEST_PATIENCE={emulation.SLOWER}",
            *["ctest", "--test-dir", f"/build/{build}", "--parallel", "2", "-E", left_out],
        ]
        try:
            printed = run_in(
                *[self.system(), *command, *which],
                binds=[(self._folder, "/build")],
                volatile=True,
                preexec_fn=emulation.refuse_pidfds,
            )
        finally:
            shutil.copy2(self._folder / build / "Testing/Temporary/LastTest.log", log)
            counts = self._functions(log)
            self.passed += counts["passed"]
        tests = re.search(r"tests passed, 0 tests failed out of (\d+)", printed)
        skipped = f", {counts['skipped']} skipped" if counts["skipped"] else ""
        return f"{tests[1]} tests, {counts['passed']} functions passed{skipped}"

    @staticmethod
    def _functions(log):
        """Returns how many functions of the tests have passed, and how many were skipped."""
        counts = Counter()
        for outcome in re.findall(r"^Totals: (.*)", log.read_text(errors="replace"), re.MULTILINE):
            for number, what in re.findall(r"(\d+) (passed|skipped)", outcome):
                counts[what] += int(number)
        return counts
