"""A LibreOffice of the tests' own: a fresh user's profile with an extension in it, running without a display."""
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time

import uno
from com.sun.star.beans import PropertyValue

NOBODY = 65534


def as_user(command):
    """LibreOffice installs no extension for root."""
    if os.geteuid() != 0:
        return command
    return ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups"] + command


class Office:
    def __init__(self, *extensions):
        self.folder = tempfile.mkdtemp(prefix="office")
        os.chmod(self.folder, 0o777)
        profile = f"-env:UserInstallation=file://{self.folder}/profile"
        self.environment = dict(os.environ, HOME=self.folder, PATH="/usr/bin:/bin:/usr/sbin", LC_ALL="C.UTF-8")
        for extension in extensions:
            copy = shutil.copy(extension, self.folder)
            os.chmod(copy, 0o644)
            self.run(["unopkg", "add", "-f", "--suppress-license", profile, copy])
        self.port = 20000 + os.getpid() % 20000
        self.log = open(os.path.join(self.folder, "log"), "wb")
        self.process = subprocess.Popen(
            as_user(["soffice", "--headless", "--norestore", "--nologo", "--nodefault", profile,
                     f"--accept=socket,host=127.0.0.1,port={self.port},tcpNoDelay=1;urp"]),
            env=self.environment, cwd=self.folder, stdin=subprocess.DEVNULL, stdout=self.log, stderr=self.log,
            start_new_session=True)
        self.desktop = self.connect()

    def run(self, command):
        done = subprocess.run(as_user(command), env=self.environment, cwd=self.folder, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=120)
        if done.returncode:
            sys.exit(f"{' '.join(command)}\n{done.stdout}{done.stderr}")

    def connect(self):
        local = uno.getComponentContext()
        resolver = local.ServiceManager.createInstanceWithContext("com.sun.star.bridge.UnoUrlResolver", local)
        end = time.monotonic() + 120
        while True:
            try:
                context = resolver.resolve(
                    f"uno:socket,host=127.0.0.1,port={self.port},tcpNoDelay=1;urp;StarOffice.ComponentContext")
                return context.ServiceManager.createInstanceWithContext("com.sun.star.frame.Desktop", context)
            except Exception:
                if time.monotonic() > end or self.process.poll() is not None:
                    self.close()
                    raise
                time.sleep(0.3)

    def new(self):
        return self.desktop.loadComponentFromURL("private:factory/scalc", "_blank", 0, (hidden(),))

    def open(self, path):
        return self.desktop.loadComponentFromURL(pathlib.Path(path).absolute().as_uri(), "_blank", 0, (hidden(),))

    def save(self, document, name, kind):
        path = os.path.join(self.folder, name)
        document.storeToURL(pathlib.Path(path).as_uri(), (PropertyValue("FilterName", 0, kind, 0),))
        return path

    def close(self):
        try:
            os.killpg(self.process.pid, signal.SIGTERM)
            self.process.wait(20)
        except (ProcessLookupError, subprocess.TimeoutExpired):
            os.killpg(self.process.pid, signal.SIGKILL)
        self.log.close()
        shutil.rmtree(self.folder, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()


def hidden():
    return PropertyValue("Hidden", 0, True, 0)
