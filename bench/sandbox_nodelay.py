# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
"""The sandbox with Nagle's algorithm off on its HTTP connections (NODELAY=1 in the bench scripts).

The sandbox's HTTP server writes a reply's headers and its body in two writes. With Nagle's algorithm
on, the body waits for the client's acknowledgement of the headers, which a client that has nothing to
send delays by up to 40 ms: every reply on a kept-alive connection arrives about 40 ms late. A query
job reads its pages one after another, each address taken from the page before, and so pays that wait
on every page, while curl's pool of independent transfers overlaps it. This wrapper measures the
program without that wait; the sandbox itself is left as it is.
"""
import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "sandbox"))

import sandbox  # noqa: E402  (found through the path above)

sandbox.SandboxHandler.disable_nagle_algorithm = True

if __name__ == "__main__":
    sys.exit(sandbox.main())
