"""A sandbox in a process and store of its own, and applications that talk to it."""

import atexit
import http.client
import json
import os
import re
import shutil
import signal
import socket
import ssl
import subprocess
import tempfile
import urllib.parse

FORM = "application/x-www-form-urlencoded; charset=utf-8"
STEPS = "/api/v1/authentications/steps"


def encoded(fields):
    return "&".join(urllib.parse.quote(name, safe="-._~/?") + "=" +
                    urllib.parse.quote(value, safe="-._~/?") for name, value in sorted(fields))


class Sandbox:
    """Programs: the folder with the sandbox and the host; specimen: the folder with its media."""

    def __init__(self, programs, specimen):
        self._programs = programs
        self._specimen = specimen
        self._store = tempfile.mkdtemp(prefix="console-store-")
        self._process = None
        self.port = self.pages_port = 0
        atexit.register(self.close)
        self.start()

    def start(self):
        """Starts, or starts anew, with the same store and ports."""
        self._process = subprocess.Popen(
            [os.path.join(self._programs, "kestrova-sandbox"), "--port", str(self.port),
             "--listing-port", str(self.pages_port), "--store", self._store],
            stdout=subprocess.PIPE, text=True)
        self.port = self._printed_port("https://")
        self.pages_port = self._printed_port("http://")
        self.address = f"http://localhost:{self.pages_port}"
        authority = os.path.join(self._store, "authority.pem")
        self._tls = ssl.create_default_context(cafile=authority)

    def _printed_port(self, scheme):
        for line in self._process.stdout:
            found = re.search(scheme + r"localhost:(\d+)", line)
            if found:
                return int(found.group(1))
        raise RuntimeError("the sandbox did not start")

    def kill(self):
        self._process.send_signal(signal.SIGKILL)
        self._process.wait()
        self._process.stdout.close()

    def close(self):
        atexit.unregister(self.close)
        if self._process.poll() is None:
            self.kill()
        shutil.rmtree(self._store, ignore_errors=True)

    def verify(self, email, document="id"):
        """A whole run of the host without a screen; its exit status."""
        media = [value for name, file in (("--face", "face.mov"), ("--front", "id-front.png"),
                                          ("--back", "id-back.png"))
                 for value in (name, os.path.join(self._specimen, file))]
        return subprocess.run(
            [os.path.join(self._programs, "kestrova-wire"), *media, "--port", str(self.port),
             "--authority", os.path.join(self._store, "authority.pem"), "--document", document,
             "--email", email],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=20).returncode

    def connect(self):
        raw = socket.create_connection(("127.0.0.1", self.port), timeout=20)
        return self._tls.wrap_socket(raw, server_hostname="localhost")

    def post(self, path, body, content_type=FORM):
        """Status and object of the backend's answer to a request of any form."""
        connection = http.client.HTTPSConnection("localhost", self.port, context=self._tls,
                                                 timeout=20)
        connection.request("POST", path, body, {"Content-Type": content_type})
        answer = connection.getresponse()
        result = answer.status, answer.read()
        connection.close()
        return result

    def open(self, api_key="demo-key"):
        """The key of a new authentication."""
        _, body = self.post("/api/v1/authentications",
                            encoded([("api_key", api_key), ("step", "initialize")]))
        return json.loads(body)["key"]

    def step(self, key, step, **fields):
        return self.post(STEPS, encoded([("api_key", "demo-key"), ("key", key), ("step", step),
                                         *fields.items()]))

    def sign_up(self, email):
        """The key of an authentication that has come to its e-mail."""
        key = self.open()
        self.step(key, "set_nationality", country_code="de")
        self.step(key, "signup", identifier=email, identifier_type="email")
        return key

    def play(self, fault, step="", times="always"):
        self.control("/control/scenarios", {"fault": fault, "step": step, "times": times})

    def control(self, path, fields):
        connection = http.client.HTTPConnection("localhost", self.pages_port, timeout=20)
        connection.request("POST", path, urllib.parse.urlencode(fields))
        answer = connection.getresponse()
        text = answer.read().decode()
        connection.close()
        if answer.status != 200:
            raise RuntimeError(text)
