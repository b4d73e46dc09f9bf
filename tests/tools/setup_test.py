#!/usr/bin/env python3
"""scripts/setup installs what is missing and nothing else, as root or through sudo.

It runs with a PATH that holds nothing but fakes of the programs it calls; each notes its call.

usage: setup_test.py SETUP
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

SETUP = sys.argv.pop(1) if len(sys.argv) > 1 else os.path.join(
    os.path.dirname(os.path.abspath(__file__)), "..", "..", "scripts", "setup")

FAKES = {
    # The status of the package that is asked for last: one that was never heard of is a failure.
    "dpkg-query": """
for package; do :; done
case " $FAKE_UNKNOWN " in *" $package "*) echo "no packages found" >&2; exit 1 ;; esac
case " $FAKE_REMOVED " in *" $package "*) printf config-files; exit 0 ;; esac
printf installed
""",
    "id": """[ "$*" = -u ] && echo "$FAKE_USER" """,
    "apt-get": """
read -r answer && echo "apt-get was given: $answer" >>"$FAKE_LOG"
echo "$DEBIAN_FRONTEND apt-get $*" >>"$FAKE_LOG"
[ "$1" != "$FAKE_APT_FAILS" ]
""",
    "sudo": """echo "sudo $*" >>"$FAKE_LOG"; exec "$@" """,
}
ROOT = "0"
USER = "1000"
UPDATE = "apt-get update -qq"
INSTALL = "apt-get install -y -qq --no-install-recommends "


class Setup(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.log = os.path.join(folder.name, "log")
        self.programs = os.path.join(folder.name, "programs")
        os.mkdir(self.programs)
        os.symlink(shutil.which("env"), os.path.join(self.programs, "env"))
        for name, body in FAKES.items():
            path = os.path.join(self.programs, name)
            with open(path, "w", encoding="utf-8") as stream:
                stream.write("#!/bin/sh\n" + body)
            os.chmod(path, 0o755)

    def run_setup(self, user, unknown="", removed="", apt_fails=""):
        environment = {
            "PATH": self.programs, "FAKE_LOG": self.log, "FAKE_USER": user,
            "FAKE_UNKNOWN": unknown, "FAKE_REMOVED": removed, "FAKE_APT_FAILS": apt_fails}
        return subprocess.run([shutil.which("bash"), SETUP], env=environment, input="",
                              capture_output=True, text=True, check=False)

    def calls(self):
        if not os.path.exists(self.log):
            return []
        with open(self.log, encoding="utf-8") as stream:
            return stream.read().splitlines()

    def test_nothing_missing_installs_nothing(self):
        for user in ROOT, USER:
            result = self.run_setup(user)
            self.assertEqual(result.returncode, 0, result.stderr)
            self.assertEqual(self.calls(), [])
            match = re.fullmatch(
                r"setup: all (\d+) packages are installed, nothing to do\n", result.stdout)
            self.assertTrue(match, result.stdout)
            self.assertGreater(int(match[1]), 0)

    def test_root_installs_with_apt_get_alone(self):
        result = self.run_setup(ROOT, unknown="cmake swig")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(self.calls(), [
            "noninteractive " + UPDATE,
            "noninteractive " + INSTALL + "cmake swig"])
        self.assertEqual(
            result.stdout, "setup: installing from Debian: cmake swig\nsetup: done\n")

    def test_another_user_installs_through_sudo(self):
        result = self.run_setup(USER, unknown="junit5")
        self.assertEqual(result.returncode, 0, result.stderr)
        as_root = "sudo env DEBIAN_FRONTEND=noninteractive "
        self.assertEqual(self.calls(), [
            as_root + UPDATE, "noninteractive " + UPDATE,
            as_root + INSTALL + "junit5", "noninteractive " + INSTALL + "junit5"])

    def test_without_root_and_sudo_it_refuses_and_names_the_packages(self):
        os.remove(os.path.join(self.programs, "sudo"))
        result = self.run_setup(USER, unknown="cmake swig")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout, "")
        self.assertEqual(
            result.stderr,
            "setup: these packages are missing, and installing them needs root or sudo: "
            "cmake swig\n")
        self.assertEqual(self.calls(), [])

    def test_a_package_whose_settings_alone_are_left_is_missing(self):
        self.run_setup(ROOT, removed="ninja-build")
        self.assertEqual(self.calls()[-1], "noninteractive " + INSTALL + "ninja-build")

    def test_a_failure_of_apt_get_is_one_of_setup(self):
        result = self.run_setup(ROOT, unknown="cmake", apt_fails="update")
        self.assertNotEqual(result.returncode, 0)
        self.assertEqual(self.calls(), ["noninteractive " + UPDATE])
        self.assertNotIn("done", result.stdout)
        result = self.run_setup(ROOT, unknown="cmake", apt_fails="install")
        self.assertNotEqual(result.returncode, 0)
        self.assertNotIn("done", result.stdout)


if __name__ == "__main__":
    unittest.main()
