"""A private place to measure in: a home of its own, a session bus, and a display without a screen."""

import os
import shutil
import subprocess
import tempfile


class Session:
    """Use it in a `with`; what it started is ended and removed at its end."""

    def __enter__(self):
        self.home = tempfile.mkdtemp(prefix="quillora-bench-")
        self.started = []
        self.elsewhere = []
        try:
            self._open()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for process in reversed(self.started):
            process.terminate()
            process.wait()
        for folder in [self.home, *self.elsewhere]:
            shutil.rmtree(folder, ignore_errors=True)

    def _open(self):
        folders = {"HOME": self.home}
        for name, folder in {"CONFIG_HOME": "config", "DATA_HOME": "data", "CACHE_HOME": "cache", "RUNTIME_DIR": "run"}.items():
            folders[f"XDG_{name}"] = os.path.join(self.home, folder)
            os.mkdir(folders[f"XDG_{name}"], 0o700)
        # Nothing of the person's session gets in: no theme, no settings service, no virtual file systems.
        self.environment = folders | {
            "PATH": os.environ["PATH"],
            "LANG": "C.UTF-8",
            "TZ": "Europe/Berlin",
            "XDG_DATA_DIRS": "/usr/local/share:/usr/share",
            "GSETTINGS_BACKEND": "memory",
            "GIO_USE_VFS": "local",
            "NO_AT_BRIDGE": "1",
            "GDK_BACKEND": "x11",
        }
        reader, writer = os.pipe()
        self._start(["Xvfb", "-displayfd", str(writer), "-screen", "0", "1280x800x24", "-nolisten", "tcp"], writer)
        self.environment["DISPLAY"] = ":" + self._answer(reader, "Xvfb")
        reader, writer = os.pipe()
        self._start(["dbus-daemon", "--session", "--nofork", f"--print-address={writer}"], writer)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self._answer(reader, "dbus-daemon")

    def _start(self, command, descriptor):
        process = subprocess.Popen(
            command,
            env=self.environment,
            pass_fds=[descriptor],
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )
        self.started.append(process)
        os.close(descriptor)

    @staticmethod
    def _answer(reader, name):
        with os.fdopen(reader) as pipe:
            line = pipe.readline().strip()
        if not line:
            raise RuntimeError(f"{name} did not start")
        return line

    def folder(self, name, beneath):
        """A new folder in the one `beneath`; in the session's own place where there is none such."""
        if not os.path.isdir(beneath):
            beneath = self.home
        self.elsewhere.append(tempfile.mkdtemp(prefix=f"quillora-bench-{name}-", dir=beneath))
        return self.elsewhere[-1]

    def run(self, *command):
        """Runs a command to its end and yields what it printed; raises if it fails."""
        done = subprocess.run(command, env=self.environment, stdin=subprocess.DEVNULL, capture_output=True, text=True)
        if done.returncode != 0:
            raise RuntimeError(f"{' '.join(command)} ended with {done.returncode}: {done.stderr.strip()}")
        return done.stdout
