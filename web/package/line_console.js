// Standard output of a program whose lines become messages.

export class LineConsole {
  closed = false;
  endWithClosedOutput = false;
  #send;
  #decoder = new TextDecoder();
  #rest = ""; // of a line without its end

  constructor(send) {
    this.#send = send;
  }

  write(bytes) {
    const lines = (this.#rest + this.#decoder.decode(bytes, { stream: true })).split("\n");
    this.#rest = lines.pop();
    lines.forEach((line) => this.#send(line));
  }

  /** Sends what the program left without a line end. */
  finish() {
    if (this.#rest !== "") this.#send(this.#rest);
    this.#rest = "";
  }
}
