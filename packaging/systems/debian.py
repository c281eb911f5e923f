# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""Makes Debian systems and packages in a folder, and keeps them there for the next time."""

import contextlib
import fcntl
import hashlib
import os
import shutil
import subprocess
import tempfile
from pathlib import Path

SUITE = "bookworm"
INSIDE = Path(__file__).resolve().parent / "inside"
NAMESPACES = "--mount --uts --ipc --pid --fork --kill-child --propagation=private".split()


class Failure(Exception):
    """A step of the preparation has failed. The text says which, and shows what it printed."""


def run(*command, prefix=(), **options):
    """Runs a command on this machine, behind a prefix that errors do not mention, and returns its
    output."""
    done = subprocess.run(
        [str(part) for part in (*prefix, *command)],
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        stdin=subprocess.DEVNULL,
        encoding="utf-8",
        errors="replace",
        check=False,
        **options,
    )
    if done.returncode != 0:
        tail = "\n".join(done.stdout.splitlines()[-20:])
        raise Failure(f"{' '.join(map(str, command))} has failed:\n{tail}")
    return done.stdout


def run_in(root, *command, binds=(), volatile=False, **options):
    """Runs a command in a system that is not booted, and returns its output. Volatile: it changes
    nothing but the binds."""
    with contextlib.ExitStack() as stack:
        scratch = stack.enter_context(tempfile.TemporaryDirectory()) if volatile else ""
        places = [f"{source}:{target}" for source, target in binds]
        prefix = ["unshare", *NAMESPACES, INSIDE, root, scratch, *places, "--"]
        return run(*command, prefix=prefix, **options)


def install_in(root, *packages, binds=()):
    """Installs packages in a system that is not booted."""
    run_in(root, "apt-get", "install", "-y", "--no-install-recommends", *packages, binds=binds)


def mirror():
    """Returns the address from which this machine gets Debian's packages."""
    targets = ["--format", "$(SITE)", "Created-By: Packages", "Label: Debian"]
    sites = run("apt-get", "indextargets", *targets).split()
    if not sites:
        raise Failure("The package sources of this machine have no Debian mirror.")
    return sites[0]


def source_files(source):
    """Returns the files that packages are made of: those that git knows or would add."""
    listed = run("git", "-C", source, "ls-files", "-z", "-co", "--exclude-standard")
    files = [Path(name) for name in sorted(set(listed.split("\0"))) if name]
    machine = [source / "packaging" / name for name in ("booted", "cross", "handset", "systems")]
    return [
        file
        for file in files
        if (source / file).is_file() and not str(source / file).startswith(tuple(map(str, machine)))
    ]


def digest(*parts):
    """Returns a short name for what the parts (texts or bytes) are."""
    sum_ = hashlib.sha256()
    for part in parts:
        data = part.encode() if isinstance(part, str) else part
        sum_.update(str(len(data)).encode() + b":" + data)
    return sum_.hexdigest()[:12]


class Cache:
    """A folder of systems and packages. Each is made once for what it is made of."""

    def __init__(self, folder, tell):
        self.folder = folder
        self.tell = tell
        folder.mkdir(parents=True, exist_ok=True)

    def entry(self, name, key, make):
        """Returns the folder with that name for that key. make(folder) fills it if it is new."""
        folder = self.folder / f"{name}-{key}"
        with open(self.folder / f"{name}.lock", "w", encoding="utf-8") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)  # Another process may be making it.
            if folder.is_dir():
                return folder
            self.tell(f"making {name}")
            unfinished = self.folder / f"{name}.unfinished"
            shutil.rmtree(unfinished, ignore_errors=True)
            unfinished.mkdir()
            make(unfinished)
            for old in self.folder.glob(f"{name}-{'[0-9a-f]' * 12}"):
                shutil.rmtree(old)
            unfinished.rename(folder)
        return folder

    def minimal(self, architecture=None):
        """Returns the least that is a Debian system, of this machine's architecture or another."""

        def make(root):
            own = [] if architecture is None else [f"--arch={architecture}"]
            run("debootstrap", "--variant=minbase", *own, SUITE, root, mirror())

        return self.entry(named("minimal", architecture), digest(SUITE), make)

    def derived(self, name, key, change, base=None):
        """Returns a copy of the base, or else of the minimal system, that change(root) has
        changed."""

        def make(root):
            copy(base or self.minimal(), root)
            run_in(root, "apt-get", "update")
            change(root)
            run_in(root, "apt-get", "clean")

        return self.entry(name, key, make)

    def builder(self, source, architecture=None):
        """Returns a system with what the packages are built with, for this machine's architecture
        or another."""
        control = (source / "debian/control").read_text()

        def prepare(root):
            if architecture is None:
                install_in(root, "build-essential", "ccache")
            else:
                run_in(root, "dpkg", "--add-architecture", architecture)
                run_in(root, "apt-get", "update")
                install_in(root, f"crossbuild-essential-{architecture}", "ccache")
            (root / "build/debian").mkdir(parents=True)
            (root / "build/debian/control").write_text(control)
            host = [] if architecture is None else [f"--host-architecture={architecture}"]
            run_in(root, *["env", "--chdir=/build", "apt-get", "build-dep", "-y"], *host, "./")

        return self.derived(named("builder", architecture), digest(SUITE, control), prepare)

    def packages(self, source, architecture=None):
        """Returns the folder with the packages that the checkout makes, and with what was printed
        when they were built."""
        host = [] if architecture is None else [f"--host-arch={architecture}"]

        def make(folder):
            command = ["dpkg-buildpackage", "-b", "-us", "-uc", *host]
            printed = self.build(builder, source, folder, *command)
            (folder / "build.log").write_text(printed)
            shutil.rmtree(folder / "parley")

        builder = self.builder(source, architecture)
        files = source_files(source)
        contents = [(source / file).read_bytes() for file in files]
        key = digest(builder.name, *map(str, files), *contents)
        return self.entry(named("packages", architecture), key, make)

    def build(self, builder, source, folder, *command):
        """Runs a command in a copy of the checkout in the folder, in a system that has what it
        needs to build, and returns what it printed. The copy is left there."""
        tree = folder / "parley"
        for file in source_files(source):
            (tree / file).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(source / file, tree / file)
        compiled = self.folder / "ccache"
        compiled.mkdir(exist_ok=True)
        options = "parallel=2 crossbuildcanrunhostbinaries"
        environment = ["CCACHE_DIR=/ccache", f"DEB_BUILD_OPTIONS={options}"]
        return run_in(
            *[builder, "env", "--chdir=/build/parley", *environment],
            *["sh", "-c", 'PATH=/usr/lib/ccache:$PATH exec "$@"', "sh", *command],
            binds=[(folder, "/build"), (compiled, "/ccache")],
            volatile=True,
        )

    def ready_for(self, packages, name, more=(), architecture=None):
        """Returns a system with that name that has all that the packages need, and more, but not
        the packages."""
        own = {field(package, "Package") for package in packages}
        needs = sorted(
            need.strip()
            for package in packages
            for need in field(package, "Depends").split(",")
            if need.strip() and need.split()[0] not in own
        )

        def prepare(root):
            install_in(root, *more)
            run_in(root, "apt-get", "satisfy", "-y", "--no-install-recommends", ", ".join(needs))

        base = self.minimal(architecture)
        return self.derived(name, digest(SUITE, *more, *needs), prepare, base)


def named(name, architecture):
    """Returns the name of something for this machine's architecture (None) or another."""
    return name if architecture is None else f"{name}-{architecture}"


def copy(source, target):
    """Copies a system."""
    run("cp", "-a", "--reflink=auto", f"{source}/.", target)


def field(package, name):
    """Returns a field of a package's description."""
    return run("dpkg-deb", "-f", package, name).strip()


def with_higher_version(packages, folder):
    """Packs the packages again with a higher version, for an upgrade. Returns the new ones."""
    version = field(packages[0], "Version")
    higher = []
    for package in packages:
        tree = folder / package.stem
        run("dpkg-deb", "-R", package, tree)
        control = tree / "DEBIAN/control"
        control.write_text(control.read_text().replace(version, version + "+next"))
        higher.append(folder / f"{package.stem}-next.deb")
        run("dpkg-deb", "--root-owner-group", "-b", tree, higher[-1])
        shutil.rmtree(tree)
    return higher


def files_of(root):
    """Returns the files of a system, but those that change by themselves."""
    listed = run(
        *["find", root, "-xdev", "-not", "-type", "d", "-printf", "%P\\n"],
    ).splitlines()
    volatile = ("var/cache/", "var/log/", "var/lib/apt/", "var/lib/handset/", "tmp/", "run/")
    return {name for name in listed if not name.startswith(volatile)}


def missing_tools(*more):
    """Returns what this machine lacks for all this and for more; empty if nothing is missing."""
    missing = [tool for tool in ["debootstrap", "git", *more] if shutil.which(tool) is None]
    return missing + ([] if os.geteuid() == 0 else ["the rights of root"])
