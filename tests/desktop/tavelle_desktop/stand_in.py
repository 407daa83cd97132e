"""The stand-in for a model's server, running for a desktop: it speaks every provider's format (tools/stand-in)."""

import json
import os
import signal
from pathlib import Path

from .waiting import wait_until

PROGRAM = Path(__file__).resolve().parents[3] / "tools" / "stand-in" / "stand-in.py"


class StandIn:
    """`key` is the only one that it takes; the port is any, or this one."""

    def __init__(self, desktop, key=None, port=0):
        self._desktop = desktop
        self._log = desktop.folder / "stand-in.log"
        self._port_file = desktop.folder / "stand-in.port"
        self._where = f"port {port}, where something else may listen" if port else "a free port"
        self._command = ["/usr/bin/python3", "-B", PROGRAM, "--port", port, "--port-file", self._port_file,
                         "--log", self._log, "--log-secrets", *(["--key", key] if key else [])]  # fmt: skip
        self._process = None

    def start(self):
        """A port that is not any may be in use by the stand-in of another desktop, and is waited for."""
        wait_until(self._listens, f"the stand-in listens on {self._where}", within=60, every=0.1)
        return self

    @property
    def url(self):
        return f"http://127.0.0.1:{self._port_file.read_text(encoding='ascii').strip()}"

    def requests(self):
        """What was received so far: dictionaries with method, path, headers (names in lower case) and body (parsed)."""
        entries = [json.loads(line) for line in self._log.read_text(encoding="utf-8").splitlines()]
        return [{**entry, "headers": {name.lower(): value for name, value in entry["headers"]}, "body": json.loads(entry["body"])}
                for entry in entries]  # fmt: skip

    def hold(self):
        """It answers nothing until it is let go."""
        os.kill(self._process.pid, signal.SIGSTOP)

    def let_go(self):
        os.kill(self._process.pid, signal.SIGCONT)

    def _listens(self):
        if self._process is None or self._process.poll() is not None:
            self._process = self._desktop.processes.start("stand-in", *self._command)
        return self._port_file.exists()
