// The waits between tries to reach the service. Pure.

const SECONDS = [3, 5, 10, 20, 30];

/** Seconds before the try with that number, counted from 0. */
export function secondsBefore(attempt) {
  return SECONDS[Math.min(attempt, SECONDS.length - 1)];
}
