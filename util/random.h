/* Random numbers: one process-wide stream from the universal generator of
 * Marsaglia and Zaman as published by F. James (1990); every value is a
 * multiple of 2^-24. The stream seeds itself with (1802, 9373) on the first
 * draw and can be stepped backwards as well as forwards. The state is global
 * and unguarded: callers on several threads must serialise their calls. */
#ifndef UTIL_RANDOM_H
#define UTIL_RANDOM_H

#ifdef __cplusplus
extern "C" {
#endif

/* Seeds the stream; ij outside 0-31328 or kl outside 0-30081 is silently
 * replaced by the default pair 1802, 9373. */
void RandomInitialise(int ij, int kl);

/* The next uniform deviate in [0, 1). */
double RandomUniform(void);

/* lower + uniform x (upper - lower): a double in [lower, upper). */
double RandomDouble(double lower, double upper);

/* An integer in [lower, upper]: lower + trunc(uniform x (upper - lower + 1)). */
int RandomInt(int lower, int upper);

/* A normal deviate of the given mean and standard deviation, by Leva's
 * ratio-of-uniforms method (ACM TOMS 18, 1992). */
double RandomGaussian(double mean, double stddev);

/* The next uniform deviate as a 24-bit integer, 0 to 16777215. */
unsigned int rand24(void);

/* Advances the stream by n draws, discarding them. */
void ForwardRandomUniform(int n);

/* Moves the stream back by n draws (at most as many as have been drawn), so
 * that the next draws repeat the undone ones. */
void BackupRandomUniform(int n);

/* Moves the stream back one draw and returns the value that draw returned. */
double UnRandomUniform(void);

/* As UnRandomUniform, scaled like rand24. */
unsigned int unRand24(void);

/* Repeatable noise in (-1, 1] from an integer, by a hash in 32-bit wrapping
 * arithmetic; keeps no state. */
double PrimeNoise1(int x);

#ifdef __cplusplus
}
#endif

#endif
