/** A chess engine that speaks UCI (and XBoard), in a worker. */

export interface EngineOptions {
  /** Command-line arguments: `["-eval", ...]` runs a work-bench command and exits. */
  args?: string[];
  /**
   * Files of the engine's folder, by name. The package's "config.txt" and
   * "book.bk" are there unless named; null leaves a file out.
   */
  files?: Record<string, string | Uint8Array | null>;
  /** false: without shared memory, even where there is some. */
  interruptible?: boolean;
  /** Where the package's files lie, if not beside the module. */
  folder?: string | URL;
}

/** One line of output, without its line end. */
export class LineEvent extends Event {
  readonly line: string;
}

/** The engine has ended. */
export class ExitEvent extends Event {
  /** null after terminate() and after a fault. */
  readonly status: number | null;
  /** What the engine wrote, the log among it. */
  readonly files: Record<string, Uint8Array>;
}

/** The program failed; an "exit" follows. */
export class FaultEvent extends Event {
  readonly message: string;
}

export interface EngineEvents {
  line: LineEvent;
  exit: ExitEvent;
  fault: FaultEvent;
}

export class Engine extends EventTarget {
  private constructor();

  /**
   * Whether lines reach the engine while it searches ("stop", "ponderhit",
   * "isready"). Otherwise they wait for the end of the search.
   */
  readonly interruptible: boolean;

  /** Sends a line, or several with line feeds between them. */
  send(line: string): void;

  /** Sends "quit". Resolves with the exit status when the engine has ended. */
  quit(): Promise<number | null>;

  /** Ends the engine at once, whatever it does. */
  terminate(): void;

  addEventListener<Type extends keyof EngineEvents>(
    type: Type,
    listener: ((event: EngineEvents[Type]) => void) | { handleEvent(event: EngineEvents[Type]): void } | null,
    options?: boolean | AddEventListenerOptions,
  ): void;
  removeEventListener<Type extends keyof EngineEvents>(
    type: Type,
    listener: ((event: EngineEvents[Type]) => void) | { handleEvent(event: EngineEvents[Type]): void } | null,
    options?: boolean | EventListenerOptions,
  ): void;
}

/** Starts an engine. Rejects when the program cannot be loaded. */
export function createEngine(options?: EngineOptions): Promise<Engine>;
