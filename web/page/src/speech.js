// Moves and squares as a screen reader should say them.

const PIECES = { K: "king", Q: "queen", R: "rook", B: "bishop", N: "knight", P: "pawn" };

/** "knight takes f3, check" for "Nxf3+". */
export function spokenMove(san) {
  const ending = san.endsWith("#") ? ", checkmate" : san.endsWith("+") ? ", check" : "";
  const move = san.replace(/[+#]$/, "");
  if (move === "O-O") return `castles king side${ending}`;
  if (move === "O-O-O") return `castles queen side${ending}`;
  const found = /^([KQRBN]?)([a-h]?[1-8]?)(x?)([a-h][1-8])(?:=([QRBN]))?$/.exec(move);
  if (found === null) return san;
  const [, piece, from, takes, to, promotion] = found;
  const words = [PIECES[piece || "P"], from, takes && "takes", to];
  if (promotion !== undefined) words.push(`becomes a ${PIECES[promotion]}`);
  return words.filter((word) => word !== "").join(" ") + ending;
}

/** "white knight" for "N". */
export function spokenPiece(letter) {
  const side = letter === letter.toUpperCase() ? "white" : "black";
  return `${side} ${PIECES[letter.toUpperCase()]}`;
}

/** "g1, white knight" or "e4, empty". */
export function spokenSquare(square, letter) {
  return `${square}, ${letter === undefined ? "empty" : spokenPiece(letter)}`;
}
