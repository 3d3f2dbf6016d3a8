"""Commands that run beside each other: what they print goes to a log file and,
line by line, into a queue that one loop reads."""

import os
import signal
import subprocess
import threading

# A build that shares the processors with tests steps back.
STEP_BACK = 10


class Command:
    """A running command; its lines arrive as (command, line), its end as
    (command, None) with `status` set."""

    def __init__(self, words, folder, log, events, steps_back=False):
        self.words = ["nice", "-n", str(STEP_BACK), *words] if steps_back else words
        self.status = None
        self.events = events
        self.log = log
        self.process = subprocess.Popen(self.words, cwd=folder, stdin=subprocess.DEVNULL,
                                        stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                        start_new_session=True)
        self.reader = threading.Thread(target=self.read, daemon=True)
        self.reader.start()

    def read(self):
        for data in self.process.stdout:
            self.log.write(data)
            self.log.flush()
            self.events.put((self, data.decode("utf-8", "replace").rstrip("\n")))
        self.status = self.process.wait()
        self.events.put((self, None))

    def hurry(self):
        """Somebody waits for it now. Only an administrator may say so."""
        try:
            os.setpriority(os.PRIO_PGRP, self.process.pid, os.getpriority(os.PRIO_PROCESS, 0))
        except OSError:
            pass

    def stop(self):
        if self.status is None:
            try:
                os.killpg(self.process.pid, signal.SIGTERM)
            except OSError:
                pass


class Chain:
    """Commands one after the other. `work` holds (tag, words, log path); the
    rest of a tag's commands are left out when one fails. `ended` tells for each
    tag whether all went well. All but the first tag's step back."""

    def __init__(self, work, folder, events):
        self.waiting = list(work)
        self.first_tag = self.waiting[0][0] if self.waiting else None
        self.folder = folder
        self.events = events
        self.current, self.tag = None, None
        self.ended = {}
        self.next()

    def next(self):
        """Starts the next command of a tag that has not failed."""
        self.current = None
        while self.waiting and self.current is None:
            self.tag, words, path = self.waiting.pop(0)
            if self.ended.get(self.tag) is False:
                continue
            path.parent.mkdir(parents=True, exist_ok=True)
            self.current = Command(words, self.folder, open(path, "ab"), self.events,
                                   steps_back=self.tag != self.first_tag)

    def take_end(self):
        """The current command has ended."""
        if self.current.status != 0:
            self.ended[self.tag] = False
        elif not any(tag == self.tag for tag, _, _ in self.waiting):
            self.ended[self.tag] = True
        self.current.log.close()
        self.next()

    def hurry(self):
        if self.current:
            self.current.hurry()

    def stop(self):
        self.waiting = []
        if self.current:
            self.current.stop()
