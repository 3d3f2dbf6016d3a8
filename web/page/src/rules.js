// What a position is and which moves it has: the page's view of chess.js, which
// knows the rules. Everything from outside comes in through `readFen`.
import { Chess } from "chess.js";

export const START_FEN = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

/** Characters of a FEN that are looked at; the longest legal one has about 90. */
export const MAX_FEN_LENGTH = 150;

const MAX_PIECES_OF_A_SIDE = 16;
const MAX_PAWNS_OF_A_SIDE = 8;
const MAX_COUNTER = 9999;

export const SIDE_NAMES = { w: "White", b: "Black" };

/** The other side. */
export function opponent(side) {
  return side === "w" ? "b" : "w";
}

/** The side to move of a FEN. */
export function sideToMove(fen) {
  return fen.split(" ")[1];
}

// Castling rights without a king and a rook on their squares mean nothing.
function supportedRights(chess, rights) {
  const stands = (square, type, color) => {
    const piece = chess.get(square);
    return piece?.type === type && piece.color === color;
  };
  const needs = {
    K: ["e1", "h1", "w"],
    Q: ["e1", "a1", "w"],
    k: ["e8", "h8", "b"],
    q: ["e8", "a8", "b"],
  };
  const kept = Object.keys(needs).filter((letter) => {
    const [king, rook, color] = needs[letter];
    return rights.includes(letter) && stands(king, "k", color) && stands(rook, "r", color);
  });
  return kept.join("") || "-";
}

// An en-passant square counts only behind a pawn that can have come past it.
function supportedEnPassant(chess, square, mover) {
  if (square === "-") return "-";
  const file = square[0];
  const [from, to] = mover === "w" ? ["7", "5"] : ["2", "4"];
  const pawn = chess.get(file + to);
  const passed = !chess.get(square) && !chess.get(file + from);
  return passed && pawn?.type === "p" && pawn.color === opponent(mover) ? square : "-";
}

function counter(text, least) {
  const number = Number.parseInt(text, 10);
  return Math.min(Math.max(Number.isNaN(number) ? least : number, least), MAX_COUNTER);
}

function complaintAboutPieces(placement) {
  for (const [side, pieces, pawn] of [
    ["White", placement.replace(/[^A-Z]/g, ""), "P"],
    ["Black", placement.replace(/[^a-z]/g, ""), "p"],
  ]) {
    if (pieces.length > MAX_PIECES_OF_A_SIDE) return `${side} has more than 16 pieces.`;
    if (pieces.split(pawn).length - 1 > MAX_PAWNS_OF_A_SIDE) return `${side} has more than 8 pawns.`;
  }
  return "";
}

/**
 * Reads a FEN from outside.
 *
 * Missing fields behind the side to move are filled in; rights that the pieces
 * do not support are dropped.
 * @param {string} text
 * @returns {{fen?: string, error?: string}} the FEN in its usual form, or what is wrong
 */
export function readFen(text) {
  const words = String(text).slice(0, MAX_FEN_LENGTH + 1).trim();
  if (words === "") return { error: "The FEN is empty." };
  if (String(text).trim().length > MAX_FEN_LENGTH) return { error: "The FEN is too long." };
  const fields = words.split(/\s+/);
  if (fields.length > 6) return { error: "The FEN has more than six fields." };
  const [placement, side = "w", rights = "-", enPassant = "-", halfMoves = "0", number = "1"] = fields;
  const counted = `${counter(halfMoves, 0)} ${counter(number, 1)}`;
  const chess = new Chess();
  try {
    chess.load(`${placement} ${side} ${rights} ${enPassant} ${counted}`);
  } catch (error) {
    return { error: `${error.message.replace(/^Invalid FEN: /, "Not a FEN: ")}.` };
  }
  const complaint = complaintAboutPieces(placement);
  if (complaint !== "") return { error: complaint };
  const [king] = chess.findPiece({ type: "k", color: opponent(side) });
  if (chess.isAttacked(king, side)) {
    return { error: `${SIDE_NAMES[opponent(side)]} is in check, but it is not that side's move.` };
  }
  const usual = `${placement} ${side} ${supportedRights(chess, rights)} ` +
    `${supportedEnPassant(chess, enPassant, side)} ${counted}`;
  return { fen: new Chess(usual).fen() };
}

/**
 * The pieces of a FEN by square, as { e1: "K", ... }; capitals are White's.
 * @param {string} fen
 */
export function piecesOf(fen) {
  const pieces = {};
  fen.split(" ")[0].split("/").forEach((row, index) => {
    let file = 0;
    for (const letter of row) {
      if (letter >= "1" && letter <= "8") {
        file += Number(letter);
      } else {
        pieces["abcdefgh"[file] + (8 - index)] = letter;
        file += 1;
      }
    }
  });
  return pieces;
}

/** The square of a side's king. */
export function kingSquare(fen, side) {
  const letter = side === "w" ? "K" : "k";
  return Object.entries(piecesOf(fen)).find(([, piece]) => piece === letter)?.[0] ?? "";
}

/** Splits "e7e8q" into its parts; null for any other text. */
export function readCoordinates(text) {
  const found = /^([a-h][1-8])([a-h][1-8])([qrbn]?)$/.exec(String(text));
  if (found === null) return null;
  return { from: found[1], to: found[2], promotion: found[3] || undefined };
}

/**
 * What a person may have meant by a typed move, as written first: "nf3" for Nf3,
 * "o-o" or "0-0" for O-O, "e8=q" for e8=Q, "E2E4" for e2e4.
 * @param {string} text
 * @returns {string[]}
 */
export function spellings(text) {
  const promoted = text.replace(/=?([qrbn])$/i, (_, piece) => `=${piece.toUpperCase()}`);
  const piece = (word) => word.replace(/^[kqrbn]/, (letter) => letter.toUpperCase());
  return [text, text.toLowerCase(), piece(text), promoted, piece(promoted), text.toUpperCase().replace(/0/g, "O")];
}

/**
 * A line of coordinate moves in short algebraic notation, cut at the first move
 * that cannot be played.
 * @param {string} fen where the line begins
 * @param {string[]} moves
 * @param {number} most moves to translate
 * @returns {{san: string[], endsInMate: boolean}}
 */
export function lineInSan(fen, moves, most = 40) {
  const chess = new Chess(fen);
  const san = [];
  for (const text of moves.slice(0, most)) {
    const move = readCoordinates(text);
    if (move === null) break;
    try {
      san.push(chess.move(move).san);
    } catch {
      break;
    }
  }
  return { san, endsInMate: san.length > 0 && chess.isCheckmate() };
}

/** "12. Nf3 Nc6 13. ..." for moves that follow the position. */
export function numberedLine(fen, san) {
  let number = Number(fen.split(" ")[5]);
  let side = sideToMove(fen);
  const words = [];
  for (const move of san) {
    if (side === "w") words.push(`${number}.`);
    else if (words.length === 0) words.push(`${number}...`);
    words.push(move);
    if (side === "b") number += 1;
    side = opponent(side);
  }
  return words.join(" ");
}
