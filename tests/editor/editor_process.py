"""Starts "mox-xml edit" for the tests, and talks to it as a program on the same machine can."""
import http.client
import json
import os
import socket
import subprocess
import urllib.parse

TOOL = os.environ["MOX_TOOL"]
RUNNER = os.environ.get("MOX_RUNNER", "")  # what starts a program of another system
DRIVE = "Z:" if RUNNER else ""  # where that system sees the folders of this one

HEAD = '<?xml version="1.0" encoding="UTF-8"?>\n'


def command(*arguments):
    return ([RUNNER] if RUNNER else []) + [TOOL, *arguments]


def fresh_folder(name):
    """A folder below MOX_TEST_TMP that is not there yet."""
    path = os.path.join(os.environ["MOX_TEST_TMP"].removeprefix("Z:"), name)
    os.makedirs(path)
    return path


def settings(inner):
    """A settings document with these lines in its root element."""
    return f'{HEAD}<Settings xmlns:noNamespaceSchemaLocation="MXSettings.xsd">\n{inner}</Settings>\n'


def var(name, value, kind="string", more="", ui=""):
    return f'\t\t<Var name="{name}" type="{kind}" {more}><Value>{value}</Value>{ui}</Var>\n'


def narrow(text):
    return text.encode("ascii") + b"\0"


def wide(text):
    return text.encode("utf-16-le", "surrogatepass") + b"\0\0"


def write(path, data):
    with open(path, "wb") as file:
        file.write(data)


def read(path):
    with open(path, "rb") as file:
        return file.read()


class Reply:
    def __init__(self, response, body):
        self.status = response.status
        self.fields = {name.lower(): value for name, value in response.getheaders()}
        self.body = body

    def json(self):
        return json.loads(self.body)


class Editor:
    """A running editor for a file. Use it as a context manager."""

    def __init__(self, path, *options, arguments=None, **environment):
        self.path = path
        self.process = subprocess.Popen(
            command(*(arguments or ["edit", DRIVE + path, "--no-browser", *options])),
            env={**os.environ, **environment}, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE, text=True)
        self.address = self.process.stdout.readline().strip()
        if not self.address:
            raise RuntimeError(self.process.communicate(timeout=30)[1])
        parts = urllib.parse.urlsplit(self.address)
        self.host = parts.netloc
        self.port = parts.port
        self.origin = f"http://{self.host}"
        self.target = f"{parts.path}?{parts.query}"
        self.cookie = None
        self.folder = None  # of the page and its calls: "/0A1B.../"

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None and self.cookie:
            try:
                self.post("end", {})
                self.process.wait(20)
            except (OSError, subprocess.TimeoutExpired):
                pass
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        self.process.stdout.close()
        self.process.stderr.close()

    def request(self, method, target, body=None, **fields):
        """Sends a request. Fields replace those of an honest page; None leaves one out."""
        sent = {"Host": self.host}
        if self.cookie:
            sent["Cookie"] = self.cookie
        if method == "POST":
            sent["Origin"] = self.origin
            sent["Content-Type"] = "application/json"
        for name, value in fields.items():
            sent[name.replace("_", "-")] = value
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=30)
        try:
            connection.putrequest(method, target, skip_host=True, skip_accept_encoding=True)
            for name, value in sent.items():
                if value is not None:
                    connection.putheader(name, value)
            if body is not None:
                connection.putheader("Content-Length", str(len(body)))
            connection.endheaders(body)
            response = connection.getresponse()
            return Reply(response, response.read())
        finally:
            connection.close()

    def log_in(self):
        """Exchanges the first address for the cookie, as the browser does."""
        reply = self.request("GET", self.target)
        if reply.status == 303:
            self.cookie = reply.fields["set-cookie"].split(";")[0]
            self.folder = reply.fields["location"]
        return reply

    def get(self, name, **fields):
        return self.request("GET", self.folder + name, **fields)

    def post(self, name, call, **fields):
        return self.request("POST", self.folder + name, json.dumps(call).encode(), **fields)

    def form(self):
        return self.get("document").json()

    def raw(self, data, patience=20):
        """Sends bytes, and returns all that comes back."""
        with socket.create_connection(("127.0.0.1", self.port), timeout=patience) as connection:
            connection.sendall(data)
            received = b""
            try:
                while chunk := connection.recv(65536):
                    received += chunk
            except ConnectionResetError:
                pass
            return received


def change(section, entry, before, after):
    """One change as the page sends it. Without a section: of a table document."""
    made = {"change": "changed", "entry": entry, "field": "value", "before": before, "after": after}
    if section is not None:
        made["section"] = section
    return made
