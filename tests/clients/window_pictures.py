"""Makes the pictures of docs/window.md: a person plays in the window, and after
each act the screen is kept. Beside them log.txt tells what the engine was sent
meanwhile, and both boards.

    window_pictures.py PLAY_SCRIPT FOLDER
"""

import os
import pathlib
import subprocess
import sys
import tempfile

import client
from xboard_window import LEFT, NEEDED, Screen, Window

GO = r"Adapter->Engine: go"
ANSWER = r"Adapter->GUI: move "
COLOURS = 64  # enough for wooden squares, and a small file


class Album:
    """A window whose pictures and boards are kept."""

    def __init__(self, screen, script, options, folder, target):
        self.screen, self.target = screen, pathlib.Path(target)
        self.window = Window(screen, [script, *options], folder, 300)
        self.log = []

    def do(self, action, pattern, what):
        mark = self.window.do(action, pattern, what)
        self.log += [f"# {what}", *self.window.sent(mark)]

    def keep(self, name, whole=False):
        """The board, or the whole screen with what lies beside it."""
        left = 0 if whole else LEFT
        area = f"{LEFT - left + self.window.width}x{self.window.height}+{left}+0"
        subprocess.run(
            ["import", "-display", self.screen.name, "-window", "root", "-crop", area, "+repage",
             "-dither", "None", "-colors", str(COLOURS), "-strip",
             "PNG8:" + str(self.target / (name + ".png"))], check=True, timeout=60)

    def compare(self):
        shown, told = (" ".join(board) for board in
                       (self.window.board(), self.window.engines_board()))
        self.log += ["window: " + shown, "engine: " + told, ""]
        if shown != told:
            sys.exit(f"the engine has another board: {told}, not {shown}")


def play(album):
    """A few moves at a fixed depth, with the side of White."""
    for move in ("d2d4", "g1f3", "c1f4"):
        album.do(lambda move=move: album.window.move(move), ANSWER, f"{move} and its answer")
    album.keep("game")


def take_moves_back(album):
    window = album.window
    album.do(lambda: window.move("e2e4"), GO, "e2e4; the engine thinks for up to ten minutes")
    album.compare()
    window.wait_for(r"Engine->Adapter: info depth 9 ", "some thinking")
    album.do(lambda: window.key("ctrl+m"), ANSWER, "Move Now")
    album.keep("move-now")
    album.do(lambda: window.key("ctrl+x"), "GUI->Adapter: remove", "Retract Move")
    window.board()
    album.keep("taken-back")
    album.do(lambda: window.move("d2d4"), GO, "d2d4 instead")
    album.compare()
    album.do(lambda: window.key("ctrl+m"), ANSWER, "Move Now")


def analyse(album):
    window = album.window
    album.do(lambda: window.key("ctrl+a"), GO, "Analysis Mode")
    album.compare()
    album.do(lambda: window.move("g1f3"), GO, "g1f3 in the analysis")
    mark = window.mark()
    window.wait_for(r"Engine->Adapter: info depth 12 ", "some thinking", mark)
    album.compare()
    album.keep("analysis", whole=True)


def set_up(album):
    window = album.window
    album.do(lambda: window.key("ctrl+shift+e"), "Adapter->Engine: stop", "Edit Position")
    for drag in ("d8off", "h7h4", "b1c3", "c1f4"):
        window.move(drag)
    album.keep("edited")
    album.do(lambda: window.key("ctrl+b"), GO, "Machine Black")
    album.compare()
    album.do(lambda: window.key("ctrl+m"), ANSWER, "Move Now")
    album.keep("edited-game")


def change_sides(album):
    window = album.window
    album.do(lambda: window.key("ctrl+n"), "Adapter->Engine: ucinewgame", "New Game")
    album.do(lambda: window.key("ctrl+w"), GO, "Machine White")
    album.compare()
    album.do(lambda: window.key("ctrl+m"), ANSWER, "Move Now")
    window.flipped = True
    album.do(lambda: window.move("e7e5"), GO, "e7e5 on the board turned round")
    album.compare()
    album.keep("other-side")
    album.do(lambda: window.key("ctrl+m"), ANSWER, "Move Now")


def main(script, target):
    client.need(*NEEDED, "import")
    script = os.path.abspath(script)
    log = ["What the engine was sent after each act, and the boards of both."]
    for options, acts in ((["--depth", "6"], [play]),
                          (["--time", "600"], [take_moves_back, analyse, set_up, change_sides])):
        screen = Screen()
        with tempfile.TemporaryDirectory() as folder:
            settings = pathlib.Path(folder) / "data" / "mirvo" / "config.txt"
            settings.parent.mkdir(parents=True)
            settings.write_text("UseOpeningBook=0\n", encoding="ascii")
            album = Album(screen, script, options, folder, target)
            try:
                for act in acts:
                    act(album)
            finally:
                album.window.close()
                screen.close()
            log += ["", "## play.sh " + " ".join(options), "", *album.log]
    (pathlib.Path(target) / "log.txt").write_text("\n".join(log).rstrip() + "\n", encoding="utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
