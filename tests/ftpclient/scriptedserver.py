# SPDX-License-Identifier: BSD-3-Clause
"""FTP servers that do what a test tells them to, on loopback.

The program prints the port of its desk, and ends when its reader does. Each connection to the desk
starts a server, which serves any number of control connections until that connection ends. Over it,
a line each:
- the test sends an object: "script", "content" (what downloads and listings send), "byte by byte";
- the desk answers with the server's port;
- for each empty line from the test the desk answers with all command lines so far, and after each
  upload "=" with its first bytes. It first waits, up to a fifth of a second, until the server has
  finished its script for the last command, so that what that sends has been sent.
- The control connections share the script and the list of commands.

Without a script a server behaves well. A script is a list of "VERB: action|action", separated by
";". Each entry is for one command of that verb ("greeting" is one too); the next one is answered as
usual. Actions:
  <text>       sent with CR LF; {pasv}, {spaced}, {port}, {full}, {size} are filled in, \u2400 is a NUL
  raw <text>   sent as it stands
  spam <n> <text>, drip <n> <text>  sent n times, at once or five times a second
  wait <ms>, close (the control connection), nothing
die <ms>     breaks all connections off, and refuses others for so long
  data         moves the whole content after the offset of REST; forget drops that offset
  part <n>     moves the next n bytes and leaves the data connection open
  end, cut     closes the data connection, cleanly or with a reset
  flood        sends data until the other side goes
  from <address>  in active mode, connects from there from now on
  tls <name>   goes on over TLS with that certificate of the folder "certificates", tls1.2 at most
               with that version; clear ends that.
               After PROT P data connections do so with the same one, and must resume its session
  unprotected  sends data in clear all the same
  chop         closes the data connection without TLS's closing message
"""
import contextlib
import json
import re
import select
import socket
import socketserver
import ssl
import struct
import threading
import time

BEHAVIOUR = """greeting: 220 ready;USER: 331 password;PASS: 230 in;CWD: 250 there;REST: 350 go on;
PASV: 227 Entering Passive Mode ({pasv});EPSV: 229 Extended ({epsv});AUTH: 234 go|tls good;
CCC: 200 go|clear;RNFR: 350 to what;SIZE: 213 {size};
MDTM: 213 20240229120001;PWD: 257 in step;ABOR: 226 aborted;QUIT: 221 bye|close;
RETR: 150 here|data|226 done;LIST: 150 here|data|226 done;NLST: 150 here|data|226 x;
MLSD: 150 here|data|226 done;STOR: 150 give|data|226 done;APPE: 150 give|data|226 done;STOU: 150 give|data|226 x"""
PATIENCE = 60  # seconds for a peer that does nothing
GUARD = threading.Lock()


def entries(script):
    return [entry.partition(": ")[::2] for entry in re.split("; *\n?", script)]


class Server(socketserver.StreamRequestHandler):
    def handle(self):
        order = json.loads(self.rfile.readline())
        self.script = entries(order["script"])
        self.content = order["content"].encode("latin-1")
        self.byte_by_byte = order["byte by byte"]
        self.certificates = order["certificates"]
        self.commands, self.conversations = [], []
        self.listens = threading.Event()
        self.port, self.ends = 0, False
        self.listen()
        self.answer(self.port)
        while self.rfile.readline():
            self.listens.wait(0.2)
            self.answer(self.commands)
        self.ends = True
        with contextlib.suppress(OSError):  # it may be dead
            self.stop_listening()

    def answer(self, what):
        self.wfile.write(json.dumps(what).encode() + b"\n")

    def listen(self):
        self.listener = socket.create_server(("127.0.0.1", self.port))
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self.serve, args=[self.listener], daemon=True).start()

    def stop_listening(self):
        self.listener.shutdown(socket.SHUT_RDWR)
        self.listener.close()

    def serve(self, listener):
        while True:
            try:
                control = listener.accept()[0]
            except OSError:
                return
            self.conversations.append(Conversation(self, control))
            threading.Thread(target=self.conversations[-1].hold, daemon=True).start()

    def die(self, seconds):
        self.stop_listening()
        for conversation in self.conversations:
            conversation.break_off()
        self.conversations = []
        time.sleep(seconds)
        if not self.ends:
            self.listen()


class Conversation:
    def __init__(self, server, control):
        self.server, self.control = server, control
        self.offset, self.origin = 0, "127.0.0.1"
        self.passive = self.active = self.data = None
        self.lines, self.tls, self.protects = None, None, False

    def hold(self):
        self.control.settimeout(PATIENCE)
        self.control.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self.lines = self.control.makefile("rb")
        with contextlib.suppress(OSError):
            self.perform("greeting")
            while not self.lines.closed and self.obey_next():
                pass
        for open_still in (self.lines, self.control):
            with contextlib.suppress(OSError):
                open_still.close()
        self.drop_data()

    def break_off(self):
        for side in (self.control, self.data, self.passive):
            with contextlib.suppress(AttributeError, OSError):
                side.shutdown(socket.SHUT_RDWR)

    def obey_next(self):
        self.server.listens.set()
        line = self.lines.readline()
        self.server.listens.clear()
        if not line.endswith(b"\r\n"):
            return False
        text = line[:-2].decode(errors="replace")
        self.server.commands.append(text)
        verb, _, argument = text.partition(" ")
        if verb == "REST":
            self.offset = int(argument)
        if verb == "PORT":
            high, low = argument.split(",")[4:]
            self.active = int(high) * 256 + int(low)
        if verb == "EPRT":
            self.active = int(argument.split("|")[3])
        if verb == "PROT":
            self.protects = argument == "P"
        self.perform(verb)
        return True

    def perform(self, verb):
        with GUARD:
            known = self.server.script + entries(BEHAVIOUR)
            entry = next((e for e in known if e[0] == verb), (verb, "200 ok"))
            if entry in self.server.script:
                self.server.script.remove(entry)
        for action in entry[1].split("|"):
            try:
                self.act(action, verb)
            except OSError:  # the other side has gone, or does nothing
                self.drop_data()

    def act(self, action, verb):
        word, _, rest = action.partition(" ")
        number, _, text = rest.partition(" ")
        if word == "raw":
            self.send(self.control, self.filled_in(rest))
        elif word == "spam":
            self.send(self.control, text.encode() * int(number))
        elif word == "drip":
            for _ in range(int(number)):
                self.send(self.control, text.encode())
                time.sleep(0.2)
        elif word == "wait":
            time.sleep(int(number) / 1000)
        elif word == "close":
            self.lines.close()
            self.control.close()
        elif word == "die":
            self.server.die(int(number) / 1000)
        elif word == "data":
            self.move(verb, None)
            self.offset = 0
            self.end_data(reset=False)
        elif word == "forget":
            self.offset = 0
        elif word == "part":
            self.move(verb, int(number))
        elif word in ("end", "cut"):
            self.end_data(reset=word == "cut")
        elif word == "unprotected":
            self.protects = False
        elif word == "chop":
            self.drop_data()
        elif word in ("tls", "tls1.2", "clear"):
            self.lines.close()
            if word == "clear":
                self.control = self.control.unwrap()
            else:
                self.tls = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
                if word == "tls1.2":
                    self.tls.maximum_version = ssl.TLSVersion.TLSv1_2
                self.tls.load_cert_chain(f"{self.server.certificates}/{rest}.pem")
                self.control = self.tls.wrap_socket(self.control, server_side=True)
            self.lines = self.control.makefile("rb")
        elif word == "flood":
            self.open_data()
            while True:
                self.send(self.data, b"x" * (1 << 20))
        elif word == "from":
            self.origin = rest
        elif word != "nothing":
            self.send(self.control, self.filled_in(action + "\r\n"))

    def send(self, to, data):
        step = 1 if self.server.byte_by_byte and len(data) <= 1000 else max(1, len(data))
        for at in range(0, len(data), step):
            to.sendall(data[at:at + step])

    def filled_in(self, text):
        if "{full}" in text:  # a port whose queue is full: nobody answers there
            self.full = socket.create_server(("127.0.0.1", 0), backlog=0)
            port = self.full.getsockname()[1]
            self.in_line = socket.create_connection(("127.0.0.1", port))
            text = text.replace("{full}", "%d,%d" % divmod(port, 256))
        if "{" in text:
            self.passive, self.active = socket.create_server(("127.0.0.1", 0)), None
            self.passive.settimeout(PATIENCE)
            port = "%d,%d" % divmod(self.passive.getsockname()[1], 256)
            text = (text.replace("{port}", port).replace("{pasv}", "127,0,0,1," + port)
                    .replace("{epsv}", "!!!%d!" % self.passive.getsockname()[1])
                    .replace("{spaced}", " 127 , 0, 0 ,1, " + port.replace(",", " , "))
                    .replace("{size}", str(len(self.server.content))))
        return text.replace("\u2400", "\0").encode()

    def open_data(self):
        """In passive mode the client has connected; in active mode it listens."""
        if self.data:
            return
        if self.active:
            self.data = socket.create_connection(("127.0.0.1", self.active), PATIENCE,
                                                 (self.origin, 0))
        elif self.passive:
            self.data = self.passive.accept()[0]
        else:
            raise OSError("no way was agreed upon")
        self.data.settimeout(PATIENCE)
        if self.protects:
            self.data = self.tls.wrap_socket(self.data, server_side=True)
            if not self.data.session_reused:
                self.drop_data()
                raise OSError("another session")
        self.data.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)

    def end_data(self, reset):
        self.open_data()
        if isinstance(self.data, ssl.SSLSocket) and not reset:
            self.data = self.data.unwrap()
        linger = struct.pack("ii", reset, 0)
        self.data.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, linger)
        self.drop_data()

    def drop_data(self):
        if self.data:
            self.data.close()
            self.data = None

    def move(self, verb, length):
        self.open_data()
        if verb in ("RETR", "LIST", "NLST", "MLSD"):
            part = self.server.content[self.offset:][:length]
            self.send(self.data, part)
            self.offset += len(part)
            return
        came = b""
        while length is None or len(came) < length:
            part = self.data.recv(65536 if length is None else length - len(came))
            if not part:
                break
            came += part
        self.server.commands.append("=" + came[:99].decode("latin-1"))


class Desk(socketserver.ThreadingTCPServer):
    daemon_threads = True
    request_queue_size = 100


with Desk(("127.0.0.1", 0), Server) as desk:
    threading.Thread(target=desk.serve_forever, daemon=True).start()
    print(desk.server_address[1], flush=True)
    reader_gone = select.poll()
    reader_gone.register(1, 0)
    reader_gone.poll()
