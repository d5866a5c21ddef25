"""A port for a server of a test."""
import itertools
import os
import socket


class ReservedPort:
    """A free port that no other test on this machine gets, and that the system gives to nobody: the
    same claim as testing_support::ReservedPort makes."""

    def __init__(self):
        for attempt in itertools.count(os.getpid() * 7):
            self.number = 20000 + attempt % 10000
            self.claim = socket.socket(socket.AF_UNIX)
            try:
                self.claim.bind(f"\0zelk-test-port-{self.number}")
                with socket.socket() as free:
                    free.bind(("127.0.0.1", self.number))
                return
            except OSError:
                self.claim.close()
