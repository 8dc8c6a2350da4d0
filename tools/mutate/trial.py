"""Builds one mutant and lets the tests look for it.

The unchanged tree is built once. A mutant compiles what depends on its file, cheapest first, and links
tests with these objects in front of the unchanged ones.
"""

import filecmp
import json
import os
import re
import resource
import shlex
import shutil
import signal
import subprocess
from dataclasses import dataclass
from pathlib import Path

COMPILE_SECONDS = 120
FLAGS = "-O0 -g0 -w"  # added to each compilation of a mutant
# Slower tests run once, when everything is compiled, on what has survived all others.
SLOW_SECONDS = 9
# What the compiler says where a proof, or a plan made at compile time, does not hold.
PROOF = re.compile(r"error: (static assertion failed|non-constant condition for static assertion"
                   r"|.*is not a constant expression|call to non-.constexpr. function"
                   r"|.*call to consteval function|.*(array subscript|out(side)? (of )?bounds"
                   r"|overflow in constant expression|.constexpr. (loop|evaluation)))")


@dataclass(frozen=True)
class Test:
    target: str
    arguments: tuple = ()  # of a program that is not GoogleTest's, or of the script
    filter: str = "*"
    own_processes: bool = False  # each test in a process of its own
    environment: tuple = ()
    is_slow: bool = False  # also where it is quick on the unchanged tree
    script: str = ""  # runs the program; both are relative to the tree, as the script's arguments


@dataclass
class Verdict:
    kind: str  # killed, proof, invalid, survived
    by: str = ""


def run(command, directory, seconds, environment=None):
    """The exit status, None after the time limit, and the output. The limit is one of the processor's
    time, as others may use the machine; whoever waits for four such times waits for ever."""
    with subprocess.Popen(command, cwd=directory, env=environment, text=True, errors="replace",
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          start_new_session=True) as process:
        for _ in range(4):
            try:
                output, _ = process.communicate(timeout=seconds)
                return process.returncode, output
            except subprocess.TimeoutExpired:
                if processor_seconds(process.pid) >= seconds:
                    break
        os.killpg(process.pid, signal.SIGKILL)
        output, _ = process.communicate()
        return None, output


def processor_seconds(group):
    """What the processes of a group have taken."""
    ticks = 0
    for status in Path("/proc").glob("[0-9]*/stat"):
        try:
            fields = status.read_text().rpartition(") ")[2].split()
        except OSError:
            continue
        if int(fields[2]) == group:
            ticks += sum(map(int, fields[11:15]))
    return ticks / os.sysconf("SC_CLK_TCK")


class Base:
    """The unchanged tree, built, and what each object and test is made of."""

    def __init__(self, root, work, suite):
        self.suite = suite
        self.tree = work / "base"
        self.build = self.tree / "build/release"
        copy_tree(root, self.tree)
        environment = dict(os.environ, CCACHE_BASEDIR=str(self.tree))
        # Files on their own: a mutant changes one.
        for command in (["cmake", "--preset", "release", "-DMESH_L2VPN_UNITY=OFF"],
                        ["ninja", "-C", str(self.build), "-j2", *{test.target for test in suite.tests},
                         *suite.helpers]):
            status, output = run(command, self.tree, None, environment)
            if status != 0:
                raise SystemExit(output)
        commands = json.loads((self.build / "compile_commands.json").read_text())
        self.commands = {re.search(r" -o (\S+)", entry["command"])[1]: entry["command"] for entry in commands}
        self.sources = self.read_dependencies()
        self.links = {test.target: self.link_command(test.target) for test in suite.tests}
        for library in suite.shared:
            self.links[library] = self.link_command(library)
        self.names, self.seconds = {}, {}
        for test in suite.tests:
            executable = self.executable(test.target)
            if test.own_processes:
                self.names[test] = listed(executable, test.filter)
            start = resource.getrusage(resource.RUSAGE_CHILDREN)
            failed = self.failing(test, executable, 600, os.environ)
            if failed:
                raise SystemExit(f"{failed} fails without a mutant")
            end = resource.getrusage(resource.RUSAGE_CHILDREN)
            self.seconds[test] = end.ru_utime + end.ru_stime - start.ru_utime - start.ru_stime

    def read_dependencies(self):
        sources = {}
        for line in run(["ninja", "-t", "deps"], self.build, None)[1].splitlines():
            if line and not line[0].isspace():
                held = sources.setdefault(line.split(":")[0], set())
            elif line.strip():
                path = os.path.normpath(self.build / line.strip())
                held.add(os.path.relpath(path, self.tree))
        # The compiler does not list what came from a precompiled header.
        for name, command in self.commands.items():
            header = re.search(r"-include (\S*/cmake_pch\.hxx)", command)
            if header and name in sources:
                sources[name] |= sources[os.path.relpath(f"{header[1]}.gch", self.build)]
        return sources

    def link_command(self, target):
        rules = run(["ninja", "-t", "targets", "all"], self.build, None)[1]
        path = re.search(rf"^(\S+): \w+_LINKER__{target}_Release$", rules, re.MULTILINE)[1]
        command = run(["ninja", "-t", "commands", "-s", path], self.build, None)[1]
        return command.strip().removeprefix(": && ").removesuffix(" && :")

    def executable(self, target):
        words = shlex.split(self.links[target])
        return self.build / words[words.index("-o") + 1]

    def failing(self, test, executable, seconds, environment):
        """The first test that fails, or nothing."""
        environment = dict(environment, **dict(test.environment))
        for name in self.names.get(test, [test.filter]):
            command = [executable, *(test.arguments or ("--gtest_fail_fast", f"--gtest_filter={name}"))]
            if test.script:
                command = [self.tree / test.script, executable, *(self.tree / one for one in test.arguments)]
            status, output = run(list(map(str, command)), self.build, seconds, environment)
            if status != 0:
                failed = re.findall(r"^\[  FAILED  \] ([\w./]+)", output, re.MULTILINE)
                started = re.findall(r"^\[ RUN      \] ([\w./]+)", output, re.MULTILINE)
                at = (failed or started[-1:] or [test.script or " ".join((test.target, *test.arguments))])[0]
                return at + (" (timeout)" if status is None else "")
        return ""


def listed(executable, pattern):
    names, suite = [], ""
    _, output = run([str(executable), "--gtest_list_tests", f"--gtest_filter={pattern}"], None, 60)
    for line in output.splitlines():
        line = line.split("#")[0].rstrip()
        if line.endswith(".") and not line.startswith(" "):
            suite = line
        elif line.startswith("  "):
            names.append(suite + line.strip())
    return names


def copy_tree(root, to):
    """The sources as they are, committed or not. Unchanged files keep their times, for ninja."""
    listed_files = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                                  cwd=root, check=True, capture_output=True, text=True).stdout.split("\0")
    for name in filter(None, listed_files):
        one, other = root / name, to / name
        if one.is_file() and not (other.is_file() and filecmp.cmp(one, other, shallow=False)):
            other.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(one, other)


class Worker:
    """A copy of the tree in which one mutant at a time is built and tested."""

    def __init__(self, base, directory):
        self.base, self.tree, self.objects = base, directory, directory / "build/release"
        shutil.rmtree(directory, ignore_errors=True)
        shutil.copytree(base.tree, directory, ignore=shutil.ignore_patterns("build", "corpus"))
        self.environment = dict(os.environ, CCACHE_BASEDIR=str(self.tree),
                                LD_LIBRARY_PATH=str(self.objects / "lib"))

    def compile(self, name):
        """Nothing, or the verdict that ends the trial."""
        command = re.sub(f"{re.escape(str(self.base.tree))}(?!/build)", str(self.tree), self.base.commands[name])
        # Precompiled headers have no mutant. The library's sources do without them; the tests need what
        # they include, and the compiler takes one only as the very first.
        header = re.search(r"-include \S*/cmake_pch\.hxx", command)
        if header:
            is_test = name.startswith("tests/")
            command = command.replace(header[0], f"-include stddef.h {header[0]}" if is_test else "")
        (self.objects / name).parent.mkdir(parents=True, exist_ok=True)
        status, output = run(shlex.split(f"{command} {FLAGS}"), self.objects,
                             COMPILE_SECONDS, self.environment)
        if status == 0:
            self.built.append(name)
            return None
        errors = [line for line in output.splitlines() if "error: " in line]
        # Others follow from the first.
        if status is None or errors and PROOF.search(errors[0]):
            text = errors[0].split("error: ")[1] if errors else "the compiler takes too long"
            return Verdict("proof", f"{Path(name).stem}: {text}")
        return Verdict("invalid", errors[0] if errors else output)

    def link(self, target):
        words = shlex.split(self.base.links[target])
        output = words.index("-o") + 1
        # The base is where everything else lies.
        name = next((word.split(",")[-1] for word in words if "-soname" in word), Path(words[output]).name)
        linked = self.objects / ("lib" if target in self.base.suite.shared else "bin") / name
        linked.parent.mkdir(exist_ok=True)
        words[output] = str(linked)
        held = [word for word in words if word not in self.built]
        front = [str(self.objects / name) for name in self.built if self.belongs(name, words)]
        status, text = run([held[0], *front, *held[1:]], self.base.build, COMPILE_SECONDS)
        if status != 0:
            raise SystemExit(f"{target} cannot be linked:\n{text}")
        return linked

    def belongs(self, name, words):
        """Whether the object is linked, by itself or as a part of an archive."""
        directory = name.split(".dir/")[0].split("CMakeFiles/")[-1]
        return name in words or any(Path(word).name == f"lib{directory}.a" for word in words)

    def concerns(self, test, stage):
        """Whether the test has an object of this stage, or loads a library that has."""
        libraries = [test.target, *self.base.suite.shared]
        return any("proof" not in name and self.belongs(name, shlex.split(self.base.links[target]))
                   for target in libraries for name in stage)

    def try_tests(self, tests):
        for library in self.base.suite.shared:
            if any(self.belongs(name, shlex.split(self.base.links[library])) for name in self.built):
                self.link(library)
        for test in tests:
            executable = self.link(test.target)
            # Of each process. One of many has a small part of the time.
            seconds = 5 + (2 if test.own_processes else 10) * self.base.seconds[test]
            if failed := self.base.failing(test, executable, seconds, self.environment):
                return test, failed
        return None, ""

    def trial(self, mutant, source, with_slow_tests, order):
        """`order` sorts tests, those first that are likely to notice."""
        self.built = []
        path = self.tree / mutant.file
        path.write_text(mutant.applied(source))
        try:
            return self.stages(mutant, with_slow_tests, order)
        finally:
            path.write_text(source)
            shutil.rmtree(self.objects)

    def stages(self, mutant, with_slow_tests, order):
        self.objects.mkdir(parents=True, exist_ok=True)
        affected = [name for name, sources in self.base.sources.items()
                    if mutant.file in sources and name in self.base.commands]
        stages = [stage for stage in self.base.suite.stages(affected, mutant.is_layout) if stage]
        for stage in stages:
            for name in stage:
                if verdict := self.compile(name):
                    return None, verdict
            def takes_part(test):
                if test.is_slow or self.base.seconds[test] >= SLOW_SECONDS:
                    return with_slow_tests and stage is stages[-1]
                return self.concerns(test, stage)

            tests = list(filter(takes_part, order(self.base.suite.tests)))
            if tests:
                test, failed = self.try_tests(tests)
                if failed:
                    return test, Verdict("killed", failed)
        return None, Verdict("survived")
