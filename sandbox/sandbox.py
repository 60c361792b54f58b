#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
"""Stand-in eBay sites and Gavelscope vendor servers on loopback, for tests and the demo.

Run with Debian's interpreter (it has pyftpdlib):

    /usr/bin/python3 sandbox/sandbox.py [--categories N] [--subcategories N] [--keywords N]
                                        [--items N] [--pages N] [--history N] [--day N]
                                        [--ftp-root DIR] [--hostile MODE]...

One HTTP server answers for every host by the Host header; one FTP server holds the vendor's
account. Both listen on 127.0.0.1 at ports chosen at start. Clients keep the real host names and
connect with curl's --connect-to. Standard output is the protocol, each line flushed:

    connect-to HOST:80:127.0.0.1:PORT            one line per HTTP host
    connect-to ftp.gavelscope.example:21:127.0.0.1:PORT
    ftp-root DIR                                 the FTP home directory
    ready

The sandbox then runs until its standard input reaches end of file (the parent holds the pipe, so
the sandbox ends with its parent) or until SIGTERM or SIGINT, and stops within a second with exit
status 0. Keep standard input open when starting it by hand, e.g. `sleep infinity | ...`.

--ftp-root DIR serves DIR, creating it and adding the generated files that it lacks (files already
there are kept, so a test can serve its own history file). Without it a temporary folder is filled
and removed at the end.

Test paths, on every HTTP host:
    /_test/text?body=PERCENT-ENCODED   200, exactly the decoded bytes
    /_test/headers                     200, the request's header lines as received, "Name: value\\n"
    /_test/hang                        never answers; the connection closes when the sandbox stops
    /_test/slow?bytes=N                200, N bytes sent 1 KiB at a time, 10 ms apart
    /_test/cut?body=PERCENT-ENCODED    200, promises more bytes than the body, sends the body, hangs up
    /_test/redirect?to=URL&hops=N      302 to URL (percent-encoded), after N redirects to itself
    /_test/file?name=NAME              200, the bytes of NAME in the FTP home directory now; 404 when
                                       it has none. A test rewrites the file to change the answer
    /_test/reads?name=NAME&least=N     200, the number of requests for /_test/file?name=NAME so far,
                                       answered once it reaches N (or the sandbox stops)
    /_test/seen?host=H&path=P&least=N  200, "COUNT\n": the requests so far for host H (the Host
                                       header less its port) and path P (the request's path less
                                       its query), both percent-encoded, answered once COUNT
                                       reaches N (or the sandbox stops). /_test/ paths are not
                                       counted. Host ftp.gavelscope.example, path /NAME counts the
                                       FTP server's RETR commands for NAME

Faults, on every HTTP host: /_fault/MODE/PATH answers PATH as the sites would, spoilt by MODE, so a
test can spoil one whole load by putting the prefix in front of the address it starts from:
    404, 500     that status with a short error page instead of the answer
    reset        the full length promised, half the answer sent, then the connection reset
    cut          the full length promised, half the answer sent, then the connection closed
    drip         the answer 16 bytes at a time, 200 ms apart (slower than any transfer allows)
    hang         no answer at all
On the FTP server, a file whose name starts with "drop-" breaks off halfway through a download.

Hostile servers: --hostile MODE (repeatable, modes combine) spoils the real resources it names, so a
client needs no special address; everything else stays honest. Without it nothing changes.
    endless-home         GET / on both listing hosts: no length, the home page and then its body
                         again and again, as fast as the client reads
    drip-home            GET / on both listing hosts: a length of 10,000,000, then one byte of the
                         home page every 0.9 s
    endless-line         both category lists: one line that never ends
    endless-cat          both category lists: endless lines "~CAT~Category N~|~http://LISTING_HOST
                         /Category-N/list/~|~~KEYWORD~" and 7,000 pairs "kN_I~|~http://SEARCH_HOST
                         /kN_I~|~", I = 1..7000, then CR LF
    endless-keyword      both category lists: the first category and sub-category lines, then
                         endless "~KEYWORD~" lines of 100 such pairs
    userinfo-next        every listing page's Next link is "@evil.example/next?page=N"; the host
                         evil.example is served too (one more connect-to line) and answers every
                         path with the first listing page of Site USA's first sub-category
    zero-minute-banners  /GavelscopeBanners.txt: the same entries, minutes 0 and -5 by turns
    absurd-gif           the banner pictures on the FTP server: 50 frames of 1 x 1 pixel on a
                         5700 x 5700 screen, about a kilobyte
    huge-history         FTP HotItemList.txt: the history's lines repeated to exactly 2 GiB (SIZE
                         says so), made as they are read
    endless-history      FTP HotItemList.txt: the history's lines repeated without end; SIZE
                         answers 504 (a 550 would say there is no such file)
    silent-history       FTP RETR HotItemList.txt: "150 Opening data connection.", then nothing on
                         either connection. Active data connections are then opened only when a
                         transfer starts, so this one never is
Of endless-home and drip-home, of the three category list modes and of the three history modes, one
at most. When the sandbox stops, the connections of endless answers are reset.
"""
import argparse
import collections
import contextlib
import logging
import os
import shutil
import signal
import socket
import struct
import sys
import tempfile
import threading
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from urllib.parse import unquote, unquote_to_bytes

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.filesystems import AbstractedFS
from pyftpdlib.handlers import ActiveDTP, FTPHandler
from pyftpdlib.servers import FTPServer

from hostile import HISTORY_NAME, MODES, Hostile, RepeatingFile, Stream
from sitegen import add_knob_arguments, generator_from_arguments

FTP_HOST = "ftp.gavelscope.example"
FTP_USER = "gavelscope"
FTP_PASSWORD = "h0tlist"
# Clients get, put and delete (the history is republished by removing and uploading it).
FTP_PERMISSIONS = "elradfmwMT"


def query_value(query: str, name: str) -> str | None:
    for pair in query.split("&"):
        key, sep, value = pair.partition("=")
        if sep and key == name:
            return value
    return None


class LineRecorder:
    """Hands lines of a stream on and keeps a copy of each."""

    def __init__(self, stream):
        self.stream = stream
        self.lines = []

    def readline(self, *limit):
        line = self.stream.readline(*limit)
        self.lines.append(line)
        return line


class SandboxHandler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    server_version = "GavelscopeSandbox/1.0"
    timeout = 60  # an idle kept-alive connection is dropped after this
    # A reply goes out in two writes (headers, then body). With Nagle's algorithm on, the body waits
    # for the client's delayed acknowledgement of the headers, up to 40 ms a reply: a query job, which
    # reads its pages one after another, would be timed against the sandbox instead of itself.
    disable_nagle_algorithm = True

    def version_string(self):
        return self.server_version

    def do_GET(self):
        self.answer(send_body=True)

    def do_HEAD(self):
        self.answer(send_body=False)

    def log_message(self, format, *args):
        pass  # standard output is the protocol; nothing else is written there

    def parse_request(self):
        # The parsed headers lose the spacing after each colon; /_test/headers answers the
        # lines as they came.
        recorder = LineRecorder(self.rfile)
        self.rfile = recorder
        try:
            return super().parse_request()
        finally:
            self.rfile = recorder.stream
            self.header_lines = [line.rstrip(b"\r\n") for line in recorder.lines
                                 if line.rstrip(b"\r\n")]

    def answer(self, send_body: bool):
        path, _, query = self.path.partition("?")
        test = self.TEST_PATHS.get(path)
        if test is not None:
            test(self, query, send_body)
            return
        host = self.headers.get("Host", "").split(":")[0]
        if not path.startswith("/_test/"):
            self.server.seen.add((host.lower(), path))
        if path.startswith("/_fault/"):
            mode, _, rest = path[len("/_fault/"):].partition("/")
            self.fault(mode, "/" + rest + ("?" + query if query else ""), send_body)
            return
        body = self.server.site.http_get(host, self.path)
        if body is None:
            self.reply(404, b"Not Found\n", "text/plain", send_body)
        elif isinstance(body, Stream):
            self.stream(body, content_type(path), send_body)
        else:
            self.reply(200, body, content_type(path), send_body)

    def stream(self, answer: Stream, kind: str, send_body: bool):
        self.send_response(200)
        self.send_header("Content-Type", kind)
        if answer.length is None:
            self.send_header("Connection", "close")
        else:
            self.send_header("Content-Length", str(answer.length))
        self.end_headers()
        self.close_connection = True
        if not send_body:
            return
        with self.server.streaming(self.connection):
            for chunk in answer.chunks:
                self.wfile.write(chunk)
                if self.server.stopping.wait(answer.pause):
                    return

    def fault(self, mode: str, path: str, send_body: bool):
        if mode in ("404", "500"):
            self.reply(int(mode), f"<html><body>Error {mode}</body></html>\n".encode(), "text/html", send_body)
            return
        if mode == "hang":
            self.test_hang("", send_body)
            return
        host = self.headers.get("Host", "").split(":")[0]
        body = self.server.generator.http_get(host, path) or b""
        self.send_response(200)
        self.send_header("Content-Type", content_type(path.partition("?")[0]))
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.close_connection = True
        if not send_body:
            return
        if mode == "drip":
            for start in range(0, len(body), 16):
                self.wfile.write(body[start:start + 16])
                self.wfile.flush()
                if self.server.stopping.wait(0.2):
                    return
            return
        self.wfile.write(body[:len(body) // 2])
        self.wfile.flush()
        if mode == "reset":
            # A zero linger time makes the close a reset rather than an orderly end.
            self.connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))

    def reply(self, status: int, body: bytes, kind: str, send_body: bool = True):
        self.send_response(status)
        self.send_header("Content-Type", kind)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        if send_body:
            self.wfile.write(body)

    def test_text(self, query: str, send_body: bool):
        body = unquote_to_bytes(query_value(query, "body") or "")
        self.reply(200, body, "text/plain", send_body)

    def test_headers(self, query: str, send_body: bool):
        body = b"".join(line + b"\n" for line in self.header_lines)
        self.reply(200, body, "text/plain", send_body)

    def test_hang(self, query: str, send_body: bool):
        self.server.stopping.wait()
        self.close_connection = True

    def test_cut(self, query: str, send_body: bool):
        # A connection that breaks mid-answer: the client has read the body and then fails.
        body = unquote_to_bytes(query_value(query, "body") or "")
        self.send_response(200)
        self.send_header("Content-Type", "text/plain")
        self.send_header("Content-Length", str(len(body) + 1000))
        self.end_headers()
        if send_body:
            self.wfile.write(body)
        self.close_connection = True

    def test_redirect(self, query: str, send_body: bool):
        # A page that has moved: 302 to the address in "to", or "hops" more redirects to itself first.
        target = unquote(query_value(query, "to") or "/")
        hops = int(query_value(query, "hops") or "0")
        if hops > 0:
            target = f"/_test/redirect?to={query_value(query, 'to') or ''}&hops={hops - 1}"
        self.send_response(302)
        self.send_header("Location", target)
        self.send_header("Content-Length", "0")
        self.end_headers()

    def test_file(self, query: str, send_body: bool):
        name = os.path.basename(query_value(query, "name") or "")
        self.server.reads.add(name)
        try:
            with open(os.path.join(self.server.ftp_root, name), "rb") as source:
                body = source.read()
        except OSError:
            self.reply(404, b"Not Found\n", "text/plain", send_body)
            return
        self.reply(200, body, content_type(name), send_body)

    def test_reads(self, query: str, send_body: bool):
        name = os.path.basename(query_value(query, "name") or "")
        reads = self.server.reads.wait(name, int(query_value(query, "least") or "0"))
        self.reply(200, f"{reads}\n".encode(), "text/plain", send_body)

    def test_seen(self, query: str, send_body: bool):
        key = (unquote(query_value(query, "host") or "").lower(),
               unquote(query_value(query, "path") or ""))
        seen = self.server.seen.wait(key, int(query_value(query, "least") or "0"))
        self.reply(200, f"{seen}\n".encode(), "text/plain", send_body)

    def test_slow(self, query: str, send_body: bool):
        size = int(query_value(query, "bytes") or "0")
        self.send_response(200)
        self.send_header("Content-Type", "application/octet-stream")
        self.send_header("Content-Length", str(size))
        self.end_headers()
        sent = 0
        while send_body and sent < size:
            chunk = min(1024, size - sent)
            self.wfile.write(b"x" * chunk)
            self.wfile.flush()
            sent += chunk
            if sent < size and self.server.stopping.wait(0.01):
                self.close_connection = True
                return

    TEST_PATHS = {
        "/_test/text": test_text,
        "/_test/headers": test_headers,
        "/_test/hang": test_hang,
        "/_test/slow": test_slow,
        "/_test/cut": test_cut,
        "/_test/redirect": test_redirect,
        "/_test/file": test_file,
        "/_test/reads": test_reads,
        "/_test/seen": test_seen,
    }


def content_type(path: str) -> str:
    if path.endswith(".gif"):
        return "image/gif"
    if path.endswith(".txt"):
        return "text/plain; charset=windows-1252"
    return "text/html; charset=windows-1252"


class Tally:
    """Counts of things that happened, which a request can wait on until the sandbox stops."""

    def __init__(self, stopping: threading.Event):
        self.stopping = stopping
        self.counts = collections.Counter()
        self.changed = threading.Condition()

    def add(self, key):
        with self.changed:
            self.counts[key] += 1
            self.changed.notify_all()

    def wait(self, key, least: int) -> int:
        with self.changed:
            self.changed.wait_for(lambda: self.counts[key] >= least or self.stopping.is_set())
            return self.counts[key]

    def release(self):
        with self.changed:  # a waiter is either waiting or has yet to look at the event
            self.changed.notify_all()


class SandboxHttpServer(ThreadingHTTPServer):
    daemon_threads = True

    def __init__(self, site: Hostile, ftp_root: str):
        super().__init__(("127.0.0.1", 0), SandboxHandler)
        self.site = site
        self.generator = site.generator  # faults spoil honest answers
        self.ftp_root = ftp_root
        self.stopping = threading.Event()  # releases the requests that wait for the end
        self.reads = Tally(self.stopping)  # requests per file of /_test/file
        self.seen = Tally(self.stopping)  # requests per (host, path), FTP downloads included
        self.streams = set()  # connections that an endless answer is going out on
        self.streams_lock = threading.Lock()

    @contextlib.contextmanager
    def streaming(self, connection: socket.socket):
        with self.streams_lock:
            self.streams.add(connection)
            if self.stopping.is_set():  # too late for stop_waiting to see it
                abort(connection)
        try:
            yield
        finally:
            with self.streams_lock:
                self.streams.discard(connection)

    def stop_waiting(self):
        self.stopping.set()
        self.reads.release()
        self.seen.release()
        with self.streams_lock:
            for connection in self.streams:
                abort(connection)

    def handle_error(self, request, client_address):
        if not isinstance(sys.exc_info()[1], (ConnectionError, TimeoutError)):
            super().handle_error(request, client_address)  # a traceback on standard error


def abort(connection: socket.socket):
    """Ends a connection at once. An orderly close would first send what the kernel still holds
    for it, megabytes that a slow reader could take minutes to get through."""
    try:
        connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        connection.shutdown(socket.SHUT_RDWR)  # wakes the thread that is sending on it
    except OSError:
        pass


class HalfThenBroken:
    """A file that gives its first half and then fails, as a connection that drops would."""

    def __init__(self, source):
        self.source = source
        self.name = source.name
        self.limit = os.fstat(source.fileno()).st_size // 2

    def read(self, size=-1):
        position = self.source.tell()
        if position >= self.limit:
            raise OSError("connection dropped")
        return self.source.read(min(size if size >= 0 else self.limit, self.limit - position))

    def __getattr__(self, name):
        return getattr(self.source, name)


class SandboxFS(AbstractedFS):
    def is_history(self, path: str) -> bool:
        return self.fs2ftp(path) == "/" + HISTORY_NAME

    def made_up(self, path: str) -> RepeatingFile | None:
        return self.cmd_channel.site.history_file(path) if self.is_history(path) else None

    def open(self, filename, mode):
        made_up = self.made_up(filename) if "r" in mode else None
        if made_up is not None:
            return made_up
        opened = super().open(filename, mode)
        if "r" in mode and os.path.basename(filename).startswith("drop-"):
            return HalfThenBroken(opened)
        return opened

    def getsize(self, path):
        made_up = self.made_up(path)
        return super().getsize(path) if made_up is None or made_up.size is None else made_up.size


class LateActiveDTP(ActiveDTP):
    """An active data connection opened when its transfer starts, its PORT answered earlier."""

    def handle_connect(self):
        # pyftpdlib's own, less its answer to PORT: a second answer would put the client's replies
        # out of step.
        self.del_channel()
        if self._idler is not None and not self._idler.cancelled:
            self._idler.cancel()
        if not self.cmd_channel.connected:
            return self.close()
        error = self.socket.getsockopt(socket.SOL_SOCKET, socket.SO_ERROR)
        if error:
            raise OSError(error, os.strerror(error))
        self.cmd_channel.data_channel = self.cmd_channel.dtp_handler(self.socket, self.cmd_channel)
        self.cmd_channel._on_dtp_connection()


class SandboxFtpHandler(FTPHandler):
    banner = "Gavelscope FTP ready."
    abstracted_fs = SandboxFS
    use_sendfile = False
    site: Hostile = None
    seen: Tally = None
    DATA_COMMANDS = frozenset(("RETR", "STOR", "STOU", "APPE", "LIST", "NLST", "MLSD"))
    port_later = None  # where to connect for the next transfer, when connecting waits for it
    silent = False

    def _make_eport(self, ip, port):
        if not self.site.silent_history:
            super()._make_eport(ip, port)
            return
        # pyftpdlib connects as soon as PORT comes, before the download it is for is known; the
        # silent download must find no connection made.
        self._shutdown_connecting_dtp()
        if self.data_channel is not None:
            self.data_channel.close()
            self.data_channel = None
        self.port_later = (ip, port)
        self.respond("200 PORT command successful.")

    def _make_epasv(self, extmode=False):
        self.port_later = None
        super()._make_epasv(extmode)

    def ftp_SIZE(self, path):
        made_up = self.fs.made_up(path)
        if made_up is not None and made_up.size is None:
            # Any size is a promise to stop there, which clients keep; and 550 means no such file.
            self.respond("504 No size for this file.")
            return
        super().ftp_SIZE(path)

    def pre_process_command(self, line, cmd, arg):
        if not self.silent:
            super().pre_process_command(line, cmd, arg)

    def process_command(self, cmd, *args, **kwargs):
        if cmd == "RETR":
            self.seen.add((FTP_HOST, self.fs.fs2ftp(args[0])))
            if self.site.silent_history and self.fs.is_history(args[0]):
                self.respond("150 Opening data connection.")
                self.silent = True
                if self._idler is not None and not self._idler.cancelled:
                    self._idler.cancel()  # its time-out would answer
                return
        if self.port_later is not None and cmd in self.DATA_COMMANDS:
            address, self.port_later = self.port_later, None
            super()._make_eport(*address)
        super().process_command(cmd, *args, **kwargs)


class FtpThread(threading.Thread):
    """The vendor's FTP server, polled in short steps so that it can be stopped from outside."""

    def __init__(self, root: str, site: Hostile, seen: Tally):
        super().__init__(name="ftp", daemon=True)
        authorizer = DummyAuthorizer()
        authorizer.add_user(FTP_USER, FTP_PASSWORD, root, perm=FTP_PERMISSIONS)
        handler = type("SandboxFtpHandler", (SandboxFtpHandler,), {
            "authorizer": authorizer, "site": site, "seen": seen,
            "active_dtp": LateActiveDTP if site.silent_history else ActiveDTP})
        self.server = FTPServer(("127.0.0.1", 0), handler)
        self.port = self.server.address[1]
        self.stop_requested = threading.Event()

    def run(self):
        while not self.stop_requested.is_set():
            self.server.serve_forever(timeout=0.1, blocking=False, handle_exit=False)
        for channel in list(self.server.ioloop.socket_map.values()):
            if isinstance(getattr(channel, "file_obj", None), RepeatingFile):
                abort(channel.socket)
        self.server.close_all()

    def stop(self):
        self.stop_requested.set()
        self.join()


def quiet_ftp_logging():
    # Unless a handler is in place, pyftpdlib installs its own and logs every command; only its
    # warnings and errors are worth seeing, on standard error.
    logger = logging.getLogger("pyftpdlib")
    logger.addHandler(logging.StreamHandler(sys.stderr))
    logger.setLevel(logging.WARNING)
    logger.propagate = False


def fill_ftp_root(root: str, files: dict):
    os.makedirs(root, exist_ok=True)
    for name, data in files.items():
        path = os.path.join(root, name)
        if not os.path.exists(path):
            with open(path, "wb") as out:
                out.write(data)


def parse_arguments(argv):
    parser = argparse.ArgumentParser(description="Stand-in eBay sites and vendor servers.")
    add_knob_arguments(parser)
    parser.add_argument("--ftp-root", help="FTP home directory (default: a temporary folder)")
    parser.add_argument("--hostile", action="append", default=[], choices=MODES, metavar="MODE",
                        help="misbehave as MODE (repeatable): " + ", ".join(MODES))
    args = parser.parse_args(argv)
    generator = generator_from_arguments(parser, args)
    try:
        return args, Hostile(generator, args.hostile)
    except ValueError as error:
        parser.error(str(error))


def watch_stdin(done: threading.Event):
    try:
        while os.read(0, 4096):
            pass
    except OSError:
        pass
    done.set()


def main(argv=None) -> int:
    args, site = parse_arguments(argv)
    done = threading.Event()
    for signum in (signal.SIGTERM, signal.SIGINT):
        signal.signal(signum, lambda *_: done.set())

    temporary = args.ftp_root is None
    if temporary:
        root = tempfile.mkdtemp(prefix="gavelscope-ftp-")
    else:
        root = os.path.abspath(args.ftp_root)
    fill_ftp_root(root, site.ftp_files())
    quiet_ftp_logging()

    http = SandboxHttpServer(site, root)
    ftp = FtpThread(root, site, http.seen)
    threading.Thread(target=http.serve_forever, kwargs={"poll_interval": 0.1}, name="http",
                     daemon=True).start()
    ftp.start()
    try:
        http_port = http.server_address[1]
        lines = [f"connect-to {host}:80:127.0.0.1:{http_port}" for host in site.http_hosts()]
        lines += [f"connect-to {FTP_HOST}:21:127.0.0.1:{ftp.port}", f"ftp-root {root}", "ready"]
        for line in lines:
            print(line, flush=True)
        threading.Thread(target=watch_stdin, args=(done,), name="stdin", daemon=True).start()
        done.wait()
    except BrokenPipeError:
        sys.stdout = None  # the parent went away before reading the protocol; just clean up
    finally:
        http.stop_waiting()
        http.shutdown()
        http.server_close()
        ftp.stop()
        if temporary:
            shutil.rmtree(root, ignore_errors=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
