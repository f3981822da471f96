#!/usr/bin/python3
"""Copies of a check's connections are read as the platform has read them, whatever the check has sent."""

import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).parent))

from check_copies import judge  # noqa: E402
from wire_copy import Copy, judge_connection  # noqa: E402
from wire_schema import WireDescription  # noqa: E402

DOCS = Path(__file__).parent.parent.parent / "docs"
SIGN_IN = b"POST /api/auth/login HTTP/1.1\r\nContent-Type: application/json\r\n"
REFUSED = '{"message":"No."}'
WRONG = '{"reason":"No."}'


def reply(status, body):
    return f"HTTP/1.1 {status} Word\r\nContent-Type: application/json\r\nContent-Length: {len(body)}\r\n\r\n" \
           f"{body}".encode()


class WireCopy(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.description = WireDescription(DOCS)

    def offences(self, sent, received, asked=False):
        return judge_connection(Copy(sent), Copy(received), self.description, asked)

    def judged(self, sent, status, before=b""):
        """A described refusal is taken and one that is not described is found."""
        self.assertEqual(self.offences(sent, before + reply(status, REFUSED)), [])
        found = self.offences(sent, before + reply(status, WRONG))
        self.assertTrue(any("message" in offence for offence in found), found)

    def test_the_answer_to_what_is_no_http_is_judged(self):
        for sent in (b"hello\r\n\r\n", b"GET / HTTP/9.9\r\n\r\n", b"GET / HTTP/1.1\r\nno colon\r\n\r\n",
                     b"GET / HTTP/1.1\r\nContent-Length: x\r\n\r\n", b"\x16\x03\r\n\r\n", b"GET / HT"):
            self.judged(sent, 400)
            self.assertTrue(self.offences(sent, reply(200, "{}")))

    def test_the_answer_to_half_a_request_is_judged(self):
        self.judged(SIGN_IN + b"Content-Length: 9\r\n\r\n{", 413)
        self.assertIn("half", self.offences(SIGN_IN + b"Content-Length: 9\r\n\r\n{", reply(200, "{}"))[0])

    def test_the_answer_behind_a_body_in_chunks_and_behind_a_leave_to_go_on_is_judged(self):
        chunked = SIGN_IN + b"Transfer-Encoding: chunked\r\n\r\n1\r\n{\r\n1\r\n}\r\n0\r\n\r\n"
        self.judged(chunked, 400)
        self.judged(chunked + chunked, 400, reply(400, REFUSED))
        self.judged(SIGN_IN + b"Expect: 100-continue\r\nContent-Length: 2\r\n\r\n{}", 400,
                    b"HTTP/1.1 100 Continue\r\n\r\n")

    def test_the_answer_behind_one_without_a_body_is_judged(self):
        nothing = f"HTTP/1.1 405 No\r\nContent-Length: {len(REFUSED)}\r\n\r\n".encode()
        self.judged(b"HEAD /api/accounts HTTP/1.1\r\n\r\nGET /api/accounts HTTP/1.1\r\n\r\n", 401, nothing)

    def test_what_a_check_has_asked_for_is_judged_only_where_that_is_wanted(self):
        sent = b"GET /api/accounts?why=not HTTP/1.1\r\n\r\n"
        self.assertEqual(self.offences(sent, reply(200, "[]")), [])
        self.assertTrue(self.offences(sent, reply(200, "[]"), asked=True))

    def test_a_check_without_copies_is_found(self):
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            self.assertEqual(len(judge(folder, self.description)[0]), 1)
            (folder / "1.sent").write_bytes(b"GET /api/accounts HTTP/1.1\r\n\r\n")
            (folder / "1.received").write_bytes(reply(200, "[]"))
            self.assertEqual(judge(folder, self.description), ([], 1))
            (folder / "1.received").write_bytes(reply(200, "[1]"))
            self.assertTrue(judge(folder, self.description)[0])


if __name__ == "__main__":
    unittest.main()
