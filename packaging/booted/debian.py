# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""Makes Debian systems and packages in a folder, and keeps them there for the next time."""

import hashlib
import os
import shutil
import subprocess
from pathlib import Path

SUITE = "bookworm"

# What the test machine has beside the packages, the integrator's own choice on a handset.
HANDSET = """
systemd systemd-sysv dbus dbus-user-session libpam-systemd
sway grim qtwayland5 fonts-dejavu-core xdg-utils desktop-file-utils
mako-notifier dunst ofono dconf-cli dconf-gsettings-backend
python3-dbus procps libglib2.0-bin wtype
""".split()


class Failure(Exception):
    """A step of the preparation has failed. The text says which, and shows what it printed."""


def run(*command, **options):
    """Runs a command on this machine and returns its output."""
    done = subprocess.run(
        [str(part) for part in command],
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        stdin=subprocess.DEVNULL,
        text=True,
        check=False,
        **options,
    )
    if done.returncode != 0:
        tail = "\n".join(done.stdout.splitlines()[-20:])
        raise Failure(f"{' '.join(map(str, command))} has failed:\n{tail}")
    return done.stdout


def run_in(root, *command, binds=(), volatile=False):
    """Runs a command in a system that is not booted. Volatile: it changes nothing but the binds."""
    run(
        *["systemd-nspawn", "--quiet", "--register=no", "--keep-unit", "--pipe"],
        *["--resolv-conf=copy-host", "--setenv=DEBIAN_FRONTEND=noninteractive"],
        *(["--volatile=overlay"] if volatile else []),
        *[f"--bind={source}:{target}" for source, target in binds],
        *["--directory", root],
        *command,
    )


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
    machine = (source / "packaging/booted", source / "packaging/handset")
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

    def minimal(self):
        """Returns the least that is a Debian system."""

        def make(root):
            run("debootstrap", "--variant=minbase", SUITE, root, mirror())

        return self.entry("minimal", digest(SUITE), make)

    def derived(self, name, key, change):
        """Returns a copy of the minimal system that change(root) has changed."""

        def make(root):
            copy(self.minimal(), root)
            run_in(root, "apt-get", "update")
            change(root)
            run_in(root, "apt-get", "clean")

        return self.entry(name, key, make)

    def packages(self, source):
        """Returns the folder with the packages that the checkout makes."""
        control = (source / "debian/control").read_text()

        def prepare(root):
            install_in(root, "build-essential", "ccache")
            (root / "build/debian").mkdir(parents=True)
            (root / "build/debian/control").write_text(control)
            run_in(root, "sh", "-c", "cd /build && apt-get build-dep -y ./")

        builder = self.derived("builder", digest(SUITE, control), prepare)

        def make(folder):
            tree = folder / "parley"
            for file in files:
                (tree / file).parent.mkdir(parents=True, exist_ok=True)
                shutil.copy2(source / file, tree / file)
            compiled = self.folder / "ccache"
            compiled.mkdir(exist_ok=True)
            build = (
                "export CCACHE_DIR=/ccache PATH=/usr/lib/ccache:$PATH DEB_BUILD_OPTIONS=parallel=2\n"
                "cd /build/parley && dpkg-buildpackage -b -us -uc"
            )
            binds = [(folder, "/build"), (compiled, "/ccache")]
            run_in(builder, "sh", "-c", build, binds=binds, volatile=True)
            shutil.rmtree(tree)

        files = source_files(source)
        contents = [(source / file).read_bytes() for file in files]
        return self.entry("packages", digest(SUITE, control, *map(str, files), *contents), make)

    def handset(self, packages):
        """Returns a system with all that the packages need, but without them."""
        own = {field(package, "Package") for package in packages}
        needs = [
            need.strip()
            for package in packages
            for need in field(package, "Depends").split(",")
            if need.strip() and need.split()[0] not in own
        ]

        def prepare(root):
            install_in(root, *HANDSET)
            run_in(root, "apt-get", "satisfy", "-y", "--no-install-recommends", ", ".join(needs))

        return self.derived("handset", digest(SUITE, *HANDSET, *sorted(needs)), prepare)


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


def missing_tools():
    """Returns what this machine lacks for all this; empty if nothing is missing."""
    missing = [
        tool for tool in ["systemd-nspawn", "debootstrap", "git"] if shutil.which(tool) is None
    ]
    return missing + ([] if os.geteuid() == 0 else ["the rights of root"])
