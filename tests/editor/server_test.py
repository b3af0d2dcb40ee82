#!/usr/bin/python3
"""The editor's server: what it answers to its page, and what to everybody else. No browser."""
import json
import os
import signal
import socket
import subprocess
import sys
import time
import unittest

from editor_process import (DRIVE, RUNNER, Editor, change, command, fresh_folder, narrow, read, settings, var, wide,
                            write)

SAMPLE = settings('\t<Table name="S">\n' + var("k", "1", "long") + var("t", "text") + "\t</Table>\n")
SET_K = [change("S", "k", "1", "2")]


class ServerTest(unittest.TestCase):
    def setUp(self):
        self.folder = fresh_folder(self.id())
        self.path = os.path.join(self.folder, "a.xml")
        write(self.path, narrow(SAMPLE))
        self.before = read(self.path)

    def start(self, *options, path=None, logged_in=True):
        editor = Editor(path or self.path, *options)
        self.addCleanup(editor.__exit__)
        if logged_in:
            self.assertEqual(editor.log_in().status, 303)
        return editor

    def apply(self, path, changes, *options):
        """What "mox-xml apply" makes of a copy of the file."""
        other = os.path.join(self.folder, "applied.xml")
        write(other, read(path))
        subprocess.run(command("apply", DRIVE + other, "-", *options), input=json.dumps(changes).encode(), check=True,
                       timeout=60)
        return read(other)

    def assert_refused(self, reply, status):
        self.assertEqual(reply.status, status, reply.body)
        self.assertIn("error", reply.json())
        self.assertNotIn("set-cookie", reply.fields)
        self.assertNotIn(b"Settings", reply.body)


class Answers(ServerTest):
    def test_form_has_the_document(self):
        editor = self.start()
        form = editor.form()
        self.assertEqual(form["file"], "a.xml")
        self.assertEqual((form["kind"], form["form"], form["version"]), ("settings", "narrow", 1))
        self.assertEqual([s["name"] for s in form["sections"]], ["S"])
        entries = form["sections"][0]["entries"]
        self.assertEqual([(e["name"], e["type"], e["value"]) for e in entries],
                         [("k", "long", "1"), ("t", "string", "text")])

    def test_save_writes_what_apply_writes(self):
        expected = self.apply(self.path, SET_K)
        editor = self.start()
        reply = editor.post("save", {"version": 1, "changes": SET_K})
        self.assertEqual(reply.status, 200, reply.body)
        self.assertEqual(reply.json()["document"]["version"], 2)
        self.assertEqual(read(self.path), expected)
        self.assertNotEqual(expected, self.before)
        self.assertEqual(sorted(os.listdir(self.folder)), ["a.xml", "applied.xml"])

    def test_save_with_backup_keeps_the_old_file(self):
        editor = self.start()
        self.assertEqual(editor.post("save", {"version": 1, "changes": SET_K, "backup": True}).status, 200)
        self.assertEqual(read(self.path + ".bak"), self.before)

    def test_table_document_is_saved_too(self):
        table = ('<?xml version="1.0" encoding="UTF-8"?>\n<Table xmlns:noNamespaceSchemaLocation="MXTable.xsd" '
                 'name="T">\n' + var("d", "3.0", "double") + "</Table>\n")
        write(self.path, wide(table))
        changes = [change(None, "d", "3.0", "4.5")]
        expected = self.apply(self.path, changes)
        editor = self.start()
        self.assertEqual(editor.form()["kind"], "table")
        reply = editor.post("preview", {"version": 1, "changes": changes})
        self.assertEqual(reply.json(), {"asked": [{"change": "changed", "section": "T", "entry": "d", "field": "value",
                                                   "before": "3.0", "after": "4.5"}], "besides": []})
        self.assertIn("saved", editor.post("save", {"version": 1, "changes": changes}).json())
        self.assertEqual(read(self.path), expected)

    def test_preview_shows_the_changes_and_writes_nothing(self):
        editor = self.start()
        reply = editor.post("preview", {"version": 1, "changes": SET_K})
        self.assertEqual(reply.json(), {"asked": [{"change": "changed", "section": "S", "entry": "k", "field": "value",
                                                   "before": "1", "after": "2"}], "besides": []})
        self.assertEqual(read(self.path), self.before)

    def test_preview_shows_what_a_save_changes_besides(self):
        write(self.path, narrow(settings('\t<Table name="S" eud="true">\n' + var("k", "1") +
                                         var("p", "2", more='eud="true"') + var("l", "one\ntwo") + "\t</Table>\n")))
        editor = self.start()
        besides = editor.post("preview", {"version": 1, "changes": SET_K}).json()["besides"]
        self.assertEqual([(d.get("entry"), d["field"], d["before"], d["after"]) for d in besides],
                         [(None, "eud", "true", "false"), ("p", "eud", "true", "false"),
                          ("l", "value", "one\ntwo", "one\ntwo\n\t\t\t")])

    def test_refused_changes_change_nothing(self):
        editor = self.start()
        for changes, message in [([change("S", "k", "1", "a\nb")], "line feed"),
                                 ([change("S", "k", "7", "2")], "expected"),
                                 ([change("S", "none", "1", "2")], "none"),
                                 ([change("S", "t", "text", "\u00e4")], "7-bit"),
                                 (SET_K + [change("T", "k", "1", "2")], "change 2")]:
            for target in ["preview", "save"]:
                reply = editor.post(target, {"version": 1, "changes": changes})
                self.assertIn(reply.status, (409, 422), reply.body)
                self.assertIn(message, reply.json()["error"])
        self.assertEqual(read(self.path), self.before)

    def test_no_changes_write_nothing(self):
        editor = self.start()
        self.assertEqual(editor.post("save", {"version": 1, "changes": []}).json(), {"unchanged": True})
        self.assertEqual(read(self.path), self.before)

    def test_another_version_is_refused(self):
        editor = self.start()
        self.assertEqual(editor.post("save", {"version": 1, "changes": SET_K}).status, 200)
        reply = editor.post("save", {"version": 1, "changes": [change("S", "t", "text", "x")]})
        self.assertEqual(reply.status, 409)
        self.assertIn("load the page again", reply.json()["error"])

    def test_read_only_refuses_every_change(self):
        editor = self.start("--read-only")
        self.assertEqual(editor.form()["readOnly"], "The file was opened for reading only.")
        for target in ["preview", "save", "overwrite", "rebase"]:
            self.assert_refused(editor.post(target, {"version": 1, "changes": SET_K}), 422)
        self.assertEqual(read(self.path), self.before)

    def test_document_that_cannot_be_changed_is_read_only(self):
        write(self.path, narrow('<?xml version="1.0"?>\n<Table name="T">\n' + var("d", "3.0") + "</Table>\n"))
        editor = self.start()
        self.assertIn("must be wide", editor.form()["readOnly"])

    def test_failed_save_keeps_the_session(self):
        os.mkdir(self.path + ".bak")
        editor = self.start()
        reply = editor.post("save", {"version": 1, "changes": SET_K, "backup": True})
        self.assertEqual(reply.status, 422)
        self.assertIn("a.xml was not changed", reply.json()["error"])
        self.assertEqual(read(self.path), self.before)
        self.assertIn("saved", editor.post("save", {"version": 1, "changes": SET_K}).json())

    def test_choices_are_passed_on(self):
        choices = os.path.join(self.folder, "choices.json")
        write(choices, b'{"erg:1": ["on", {"value": "0", "name": "off"}]}')
        editor = self.start("--choices", DRIVE + choices)
        self.assertEqual(editor.form()["choices"], {"erg:1": ["on", {"value": "0", "name": "off"}]})

    def test_hostile_texts_arrive_as_they_are(self):
        hostile = "</script><b>&amp;\u202e\u0007 \U0001F600"
        name = hostile.replace("<", "&lt;").replace(">", "&gt;")
        write(self.path, wide(settings(f'\t<Table name="{name}">\n' + var(name, name) + "\t</Table>\n")))
        editor = self.start()
        section = editor.form()["sections"][0]
        text = hostile.replace("&amp;", "&")
        self.assertEqual((section["name"], section["entries"][0]["name"], section["entries"][0]["value"]), (text,) * 3)


class Conflicts(ServerTest):
    def test_versions_are_shown_by_field(self):
        editor = self.start()
        theirs = narrow(SAMPLE.replace(">1<", ">5<").replace(">text<", ">other<"))
        write(self.path, theirs)
        reply = editor.post("save", {"version": 1, "changes": SET_K}).json()
        self.assertEqual(reply, {"conflict": {"version": 2, "rows": [
            {"section": "S", "entry": "k", "field": "value", "base": "1", "theirs": "5", "mine": "2", "by": "conflict"},
            {"section": "S", "entry": "t", "field": "value", "base": "text", "theirs": "other", "mine": "text",
             "by": "theirs"}]}})
        self.assertEqual(read(self.path), theirs)

    def test_rebase_goes_on_with_the_file_on_disk(self):
        editor = self.start()
        write(self.path, narrow(SAMPLE.replace(">text<", ">other<")))
        conflict = editor.post("save", {"version": 1, "changes": SET_K}).json()["conflict"]
        form = editor.post("rebase", {"version": conflict["version"]}).json()
        self.assertEqual([e["value"] for e in form["sections"][0]["entries"]], ["1", "other"])
        expected = self.apply(self.path, SET_K)
        self.assertIn("saved", editor.post("save", {"version": form["version"], "changes": SET_K}).json())
        self.assertEqual(read(self.path), expected)

    def test_removed_and_equal_changes(self):
        editor = self.start()
        write(self.path, narrow(settings('\t<Table name="S">\n' + var("t", "x") + "\t</Table>\n")))
        reply = editor.post("save", {"version": 1, "changes": SET_K + [change("S", "t", "text", "x")]}).json()
        self.assertEqual([(r["entry"], r["field"], r.get("theirs"), r.get("mine"), r["by"])
                          for r in reply["conflict"]["rows"]],
                         [("k", "", None, "1", "theirs"), ("k", "value", None, "2", "conflict"),
                          ("t", "value", "x", "x", "both")])

    def test_broken_file_is_replaced_only_on_request(self):
        editor = self.start()
        write(self.path, b"<broken")
        reply = editor.post("save", {"version": 1, "changes": SET_K}).json()["conflict"]
        self.assertIn("a.xml:1:", reply["unreadable"])
        self.assert_refused(editor.post("rebase", {"version": reply["version"]}), 409)
        self.assertEqual(read(self.path), b"<broken")
        again = {"version": reply["version"], "changes": SET_K}
        write(self.path, b"<broken differently")
        newer = editor.post("overwrite", again).json()["conflict"]
        self.assert_refused(editor.post("overwrite", again), 409)
        again["version"] = newer["version"]
        self.assertIn("saved", editor.post("overwrite", again).json())
        self.assertIn(b">2<", read(self.path))

    def test_missing_file_is_written_again_on_request(self):
        editor = self.start()
        os.remove(self.path)
        reply = editor.post("save", {"version": 1, "changes": SET_K}).json()["conflict"]
        self.assertIn("a.xml", reply["unreadable"])
        self.assertFalse(os.path.exists(self.path))
        self.assertIn("saved", editor.post("overwrite", {"version": reply["version"], "changes": SET_K}).json())
        self.assertIn(b">2<", read(self.path))


class Attacks(ServerTest):
    def test_address_holds_256_random_bits(self):
        first = self.start(logged_in=False)
        second = self.start(logged_in=False)
        for editor in (first, second):
            self.assertRegex(editor.address, r"^http://127\.0\.0\.1:\d+/\?token=[0-9A-F]{64}$")
        self.assertNotEqual(first.target, second.target)

    def test_token_is_exchanged_for_a_cookie(self):
        editor = self.start(logged_in=False)
        reply = editor.log_in()
        self.assertEqual(reply.status, 303)
        self.assertRegex(editor.folder, r"^/[0-9A-F]{64}/$")
        self.assertRegex(reply.fields["set-cookie"],
                         rf"^mox-xml=[0-9A-F]{{64}}; Path={editor.folder}; HttpOnly; SameSite=Strict$")
        self.assertEqual(len({editor.cookie.split("=")[1], editor.folder.strip("/"), editor.target.split("=")[1]}), 3)
        self.assertEqual(editor.get("").status, 200)

    def test_token_is_valid_once(self):
        editor = self.start()
        cookie, editor.cookie = editor.cookie, None
        self.assert_refused(editor.request("GET", editor.target), 403)
        self.assert_refused(editor.request("GET", editor.target, Cookie=cookie), 403)

    def test_wrong_tokens_are_refused_and_leave_the_right_one(self):
        editor = self.start(logged_in=False)
        for target in ["/?token=", "/?token=" + "0" * 64, editor.target[:-1], editor.target + "0",
                       editor.target.lower(), editor.target + "&a=b"]:
            if target != editor.target:
                self.assert_refused(editor.request("GET", target), 403)
        self.assert_refused(editor.request("POST", editor.target, b"{}"), 405)
        self.assertEqual(editor.log_in().status, 303)

    def test_nothing_without_the_cookie(self):
        editor = self.start()
        good = editor.cookie
        name, value = good.split("=")
        for cookie in [None, "", name, f"{name}=", f"{name}={value[:-1]}", f"{name}={value}0", f"other={value}",
                       f"x{name}={value}", f"{name}={value.lower()}{'' if value != value.lower() else 'x'}"]:
            editor.cookie = None
            for target in ["", "document", "open", "none", "../a.xml"]:
                self.assert_refused(editor.get(target, Cookie=cookie), 403)
                self.assert_refused(editor.request("GET", "/" + target, Cookie=cookie), 403)
            for target in ["preview", "save", "overwrite", "rebase", "end", "active"]:
                self.assert_refused(editor.post(target, {"version": 1, "changes": SET_K}, Cookie=cookie), 403)
        self.assertEqual(editor.get("document", Cookie=f"a=b; {good}; c=d").status, 200)
        self.assertEqual(read(self.path), self.before)

    def test_other_hosts_are_refused(self):
        editor = self.start()
        for host in [None, "", "evil.example", f"evil.example:{editor.port}", "127.0.0.1", f"localhost:{editor.port}",
                     f"127.0.0.1:{editor.port + 1}", f"127.0.0.1:{editor.port}.evil.example", f"[::1]:{editor.port}"]:
            self.assert_refused(editor.get("document", Host=host), 421)
            self.assert_refused(editor.request("GET", editor.target, Host=host), 421)
            self.assert_refused(editor.post("save", {"version": 1, "changes": SET_K}, Host=host), 421)
        two = f"GET / HTTP/1.1\r\nHost: {editor.host}\r\nHost: evil.example\r\nCookie: {editor.cookie}\r\n\r\n"
        self.assertNotIn(b" 200 ", editor.raw(two.encode()))
        self.assertEqual(read(self.path), self.before)

    def test_other_origins_are_refused(self):
        editor = self.start()
        for origin in [None, "", "null", "http://evil.example", "http://127.0.0.1", f"https://{editor.host}",
                       f"http://localhost:{editor.port}", f"http://127.0.0.1:{editor.port + 1}", editor.origin + "/",
                       f"{editor.origin}, http://evil.example"]:
            for target in ["save", "preview", "end"]:
                self.assert_refused(editor.post(target, {"version": 1, "changes": SET_K}, Origin=origin), 403)
            if origin is not None:
                self.assert_refused(editor.get("document", Origin=origin), 403)
        self.assertEqual(read(self.path), self.before)

    def test_only_json_posts_change_anything(self):
        editor = self.start()
        call = {"version": 1, "changes": SET_K}
        for kind in [None, "text/plain", "application/x-www-form-urlencoded", "multipart/form-data",
                     "application/json; charset=utf-8", "application/jsonx"]:
            self.assert_refused(editor.post("save", call, Content_Type=kind), 415)
        for method in ["GET", "PUT", "DELETE", "PATCH", "OPTIONS", "TRACE", "CONNECT", "FOO"]:
            self.assert_refused(editor.request(method, editor.folder + "save", json.dumps(call).encode(),
                                               Origin=editor.origin), 405)
        self.assertEqual(editor.request("HEAD", editor.folder).status, 405)
        self.assert_refused(editor.post("document", {}), 405)
        self.assertEqual(read(self.path), self.before)

    def test_malformed_calls_are_refused(self):
        editor = self.start()
        for body in [b"", b"{", b"[]", b"null", b"1", b'"x"', b"{}", b'{"version": "1"}', b'{"version": -1}',
                     b'{"version": 1}', b'{"version": 1, "changes": {}}', b'{"version": 1, "changes": [1]}',
                     b'{"version": 1, "changes": [{}]}', b'{"version": 1, "changes": [{"section": 1}]}',
                     b'{"version": 1, "changes": [], "backup": 1}', b"\xff\xfe", b"{}{}", b'{"version": 1e99}',
                     b'{"version": 1, "changes": ' + b"[" * 100000 + b"]" * 100000 + b"}", b"[" * 1000000]:
            self.assert_refused(editor.request("POST", editor.folder + "save", body), 400)
        self.assertEqual(read(self.path), self.before)

    def test_no_other_path_is_read_or_written(self):
        secret = os.path.join(self.folder, "secret.xml")
        write(secret, b"secret")
        editor = self.start()
        for target in ["secret.xml", "../secret.xml", "..%2fsecret.xml", "%2e%2e/secret.xml", "/secret.xml",
                       "document?file=secret.xml", "document/", "./document", "favicon.ico", "document#a",
                       "\\..\\secret.xml"]:
            self.assert_refused(editor.get(target), 404)
        for target in [secret, "file://" + secret, f"http://{editor.host}{editor.folder}document", "*", "/",
                       "/document", "/open", editor.folder[:-1], editor.folder.lower() + "x", "/" + editor.folder]:
            self.assert_refused(editor.request("GET", target), 404)
        for target in ["/save", "/end", "/0/end"]:
            self.assert_refused(editor.request("POST", target, b"{}"), 404)
        for extra in [{"file": secret}, {"path": secret}, {"FILE": "secret.xml"}]:
            call = {"version": 1, "changes": [{**SET_K[0], **extra}]}
            self.assert_refused(editor.post("save", call), 400)
        self.assertEqual((read(secret), read(self.path)), (b"secret", self.before))
        self.assertEqual(sorted(os.listdir(self.folder)), ["a.xml", "secret.xml"])

    def test_oversized_requests_are_refused(self):
        editor = self.start()
        long_target = "/" + "a" * 70000
        self.assertIn(b" 431 ", editor.raw(f"GET {long_target} HTTP/1.1\r\nHost: {editor.host}\r\n\r\n".encode())[:20])
        many = "".join(f"X-{i}: y\r\n" for i in range(10000))
        self.assertIn(b" 431 ", editor.raw(f"GET / HTTP/1.1\r\nHost: {editor.host}\r\n{many}\r\n".encode())[:20])
        head = f"POST {editor.folder}save HTTP/1.1\r\nHost: {editor.host}\r\nOrigin: {editor.origin}\r\n" \
               f"Cookie: {editor.cookie}\r\nContent-Type: application/json\r\n"
        for length in [16 * 1024 * 1024 + 1, 10**12, 2**64 - 1]:
            reply = editor.raw(f"{head}Content-Length: {length}\r\n\r\n".encode())
            self.assertIn(b" 413 ", reply[:20])
        chunk = b"100000\r\n" + b" " * 0x100000 + b"\r\n"
        self.assertIn(b" 413 ", editor.raw(f"{head}Transfer-Encoding: chunked\r\n\r\n".encode() + chunk * 17, 120)[:20])
        many_changes = b'{"version": 1, "changes": [' + b",".join([b"{}"] * 200001) + b"]}"
        self.assert_refused(editor.request("POST", editor.folder + "save", many_changes), 400)
        self.assertEqual(editor.get("document").status, 200)
        self.assertEqual(read(self.path), self.before)

    def test_malformed_requests_are_refused(self):
        editor = self.start()
        end = f"Host: {editor.host}\r\nCookie: {editor.cookie}\r\n\r\n"
        for line in ["GET", "GET /", "GET / HTTP/9.9", "GET / HTTP/1.1 x", "\x00\x01\x02", "GET /\x00 HTTP/1.1",
                     "\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03", "G\xe4T / HTTP/1.1", " GET / HTTP/1.1"]:
            self.assertIn(b" 400 ", editor.raw(f"{line}\r\n{end}".encode("latin-1"))[:20], line)
        for field in ["A b: c", ": c", "A\x00: c", "Content-Length: -1", "Content-Length: x",
                      "Content-Length: 1\r\nContent-Length: 2", "Content-Length: 5\r\nTransfer-Encoding: chunked"]:
            reply = editor.raw(f"GET / HTTP/1.1\r\n{field}\r\n{end}".encode())
            self.assertIn(b" 400 ", reply[:20], field)
        for chunk in ["zz\r\n", "-1\r\n", "fffffffffffffffff\r\n"]:
            head = f"POST {editor.folder}save HTTP/1.1\r\nOrigin: {editor.origin}\r\n" \
                   "Content-Type: application/json\r\nTransfer-Encoding: chunked\r\n"
            self.assertIn(b" 400 ", editor.raw((head + end + chunk).encode())[:20], chunk)
        self.assertEqual(editor.get("document").status, 200)

    def test_body_is_not_read_from_strangers(self):
        editor = self.start()
        head = f"POST {editor.folder}save HTTP/1.1\r\nHost: {editor.host}\r\nOrigin: {editor.origin}\r\n" \
               "Content-Type: application/json\r\nContent-Length: 15000000\r\n\r\n"
        self.assertIn(b" 403 ", editor.raw(head.encode())[:20])  # although the body is not sent

    def test_body_is_read_of_posts_only(self):
        editor = self.start()
        for target in [editor.folder + "document", editor.folder + "open", "/?token=" + "0" * 64]:
            head = f"GET {target} HTTP/1.1\r\nHost: {editor.host}\r\nCookie: {editor.cookie}\r\n"
            for rest in ["Content-Length: 1", "Content-Length: 15000000", "Transfer-Encoding: chunked\r\n\r\n1",
                         "Transfer-Encoding: chunked\r\n\r\ne00000"]:
                # The body itself is not sent.
                self.assertIn(b" 413 ", editor.raw(f"{head}{rest}\r\n\r\n".encode())[:20], rest)
        for rest in ["Content-Length: 0\r\n\r\n", "Transfer-Encoding: chunked\r\n\r\n0\r\n\r\n"]:
            head = f"GET {editor.folder}document HTTP/1.1\r\nHost: {editor.host}\r\nCookie: {editor.cookie}\r\n"
            self.assertIn(b" 200 ", editor.raw((head + rest).encode())[:20], rest)

    def test_second_request_on_a_connection_is_not_answered(self):
        editor = self.start()
        one = f"GET {editor.folder}document HTTP/1.1\r\nHost: {editor.host}\r\nCookie: {editor.cookie}\r\n\r\n"
        self.assertEqual(editor.raw((one * 3).encode()).count(b"HTTP/1.1 "), 1)

    def test_idle_connections_do_not_keep_others_out(self):
        editor = self.start()
        idle = [socket.create_connection(("127.0.0.1", editor.port)) for _ in range(20)]
        for connection in idle[:10]:
            connection.sendall(b"GET / HTTP/1.1\r\nHost: ")
        self.assertEqual(editor.get("document").status, 200)
        more = [socket.create_connection(("127.0.0.1", editor.port)) for _ in range(40)]
        for connection in idle + more:
            connection.close()
        time.sleep(0.2)
        self.assertEqual(editor.get("document").status, 200)

    def test_responses_are_neither_stored_nor_framed_nor_guessed(self):
        editor = self.start()
        for reply in [editor.get(""), editor.get("document"), editor.get("none"), editor.get("", Host="evil.example"),
                      editor.post("active", {})]:
            self.assertEqual(reply.fields["cache-control"], "no-store")
            self.assertEqual(reply.fields["x-content-type-options"], "nosniff")
            self.assertEqual(reply.fields["x-frame-options"], "DENY")
            self.assertEqual(reply.fields["referrer-policy"], "no-referrer")
            self.assertEqual(reply.fields["cross-origin-resource-policy"], "same-origin")
            policy = reply.fields["content-security-policy"]
            self.assertRegex(policy, r"^default-src 'none'; script-src 'sha256-[A-Za-z0-9+/]{43}='; "
                                     r"style-src 'sha256-[A-Za-z0-9+/]{43}='; base-uri 'none'; form-action 'none'; "
                                     r"require-trusted-types-for 'script'; trusted-types 'none'; connect-src 'self'; "
                                     r"frame-ancestors 'none'$")
            self.assertNotIn("access-control-allow-origin", reply.fields)

    def test_page_names_no_other_address(self):
        page = self.start().get("").body.decode()
        self.assertNotIn("http:", page.replace("http://www.w3.org/", ""))
        self.assertNotIn("https:", page)
        self.assertNotIn("innerHTML", page)


class Ends(ServerTest):
    def wait(self, editor, seconds=20):
        code = editor.process.wait(seconds)
        return code, editor.process.stderr.read()

    def open_page(self, editor):
        connection = socket.create_connection(("127.0.0.1", editor.port), timeout=20)
        connection.sendall((f"GET {editor.folder}open HTTP/1.1\r\nHost: {editor.host}\r\n"
                            f"Cookie: {editor.cookie}\r\n\r\n").encode())
        self.assertIn(b" 200 ", connection.recv(4096)[:20])
        return connection

    def test_when_the_page_is_closed(self):
        editor = self.start()
        self.open_page(editor).close()
        self.assertEqual(self.wait(editor), (0, ""))

    def test_not_when_the_page_is_loaded_again(self):
        editor = self.start()
        self.open_page(editor).close()
        again = self.open_page(editor)
        time.sleep(4)
        self.assertEqual(editor.get("document").status, 200)
        again.close()
        self.assertEqual(self.wait(editor), (0, ""))

    @unittest.skipIf(RUNNER, "for systems with xdg-open")
    def test_address_is_told_if_no_browser_opens(self):
        tools = os.path.join(self.folder, "tools")
        os.mkdir(tools)
        editor = Editor(self.path, arguments=["edit", self.path], PATH=tools)  # which has no xdg-open
        self.addCleanup(editor.__exit__)
        self.assertEqual(editor.log_in().status, 303)
        for program in ["exit 3", 'echo "$1" > "$0.address"']:
            write(os.path.join(tools, "xdg-open"), f"#!/bin/sh\n{program}\n".encode())
            os.chmod(os.path.join(tools, "xdg-open"), 0o755)
            process = subprocess.Popen(command("edit", self.path), env={**os.environ, "PATH": tools},
                                       stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
            message = process.stderr.readline()
            process.kill()
            self.assertEqual(process.communicate(timeout=20), ("", ""))
            self.assertRegex(message, r"a\.xml: opening the browser; if it does not come up, use "
                                      r"http://127\.0\.0\.1:\d+/\?token=[0-9A-F]{64} \(Ctrl-C ends the editor\)\n$")
        given = os.path.join(tools, "xdg-open.address")
        deadline = time.monotonic() + 10
        while not (os.path.exists(given) and read(given)) and time.monotonic() < deadline:
            time.sleep(0.02)
        self.assertIn(f" {read(given).decode().strip()} ", message)

    def test_when_the_page_asks_for_it(self):
        editor = self.start()
        self.assertEqual(editor.post("end", {}).status, 204)
        self.assertEqual(self.wait(editor), (0, ""))

    @unittest.skipUnless(RUNNER, "for files that are dropped on a program of Windows")
    def test_dropped_file_opens_the_editor(self):
        # Without Wine's own way to a browser, the address is printed.
        editor = Editor(self.path, arguments=[DRIVE + self.path], WINEDLLOVERRIDES="mscoree,mshtml,winebrowser.exe=")
        self.addCleanup(editor.__exit__)
        self.assertEqual(editor.log_in().status, 303)
        self.assertEqual(editor.form()["file"], "a.xml")

    @unittest.skipIf(RUNNER, "signals are sent to programs of this system")
    def test_on_ctrl_c(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            editor = self.start()
            page = self.open_page(editor)
            editor.process.send_signal(number)
            self.assertEqual(self.wait(editor), (0, ""))
            page.close()

    def test_before_it_starts_if_the_file_is_none(self):
        write(self.path, b"<broken")
        for arguments, code, message in [([self.path], 3, "a.xml:1:"), ([self.path + ".none"], 4, "cannot open"),
                                         ([self.path, "--idle", "0"], 2, "--idle")]:
            arguments[0] = DRIVE + arguments[0]
            run = subprocess.run(command("edit", *arguments, "--no-browser"), capture_output=True, text=True,
                                 timeout=60)
            self.assertEqual((run.returncode, run.stdout), (code, ""))
            self.assertIn(message, run.stderr)
        run = subprocess.run(command("edit", "-", "--no-browser"), capture_output=True, text=True, timeout=60)
        self.assertEqual(run.returncode, 2)


if __name__ == "__main__":
    unittest.main(verbosity=1 if len(sys.argv) > 1 else 2)
