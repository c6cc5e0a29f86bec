// measure OUTPUT COMMAND [ARGUMENT...]: runs a command with its output in a file and prints on one line its
// processor time (user and system) in microseconds, its peak memory in KiB and its status.
//
// A small C program of its own, because a command's peak memory counts from the moment before it replaces
// the program that starts it: that has to be small.

#include <fcntl.h>
#include <stdio.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

static long long Microseconds(struct timeval time) {
  return time.tv_sec * 1000000LL + time.tv_usec;
}

int main(int argc, char** argv) {
  if (argc < 3) {
    fputs("usage: measure OUTPUT COMMAND [ARGUMENT...]\n", stderr);
    return 2;
  }
  const int output = open(argv[1], O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  const int errors = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (output < 0 || errors < 0) {
    perror(argv[1]);
    return 2;
  }
  const pid_t child = fork();
  if (child == 0) {
    dup2(output, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    execvp(argv[2], argv + 2);
    _exit(127);
  }
  int status = 0;
  struct rusage usage;
  if (child < 0 || wait4(child, &status, 0, &usage) != child) {
    perror("measure");
    return 2;
  }
  printf("%lld %ld %d\n", Microseconds(usage.ru_utime) + Microseconds(usage.ru_stime), usage.ru_maxrss,
         WIFEXITED(status) ? WEXITSTATUS(status) : 128);
  return 0;
}
