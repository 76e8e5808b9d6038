/* Copies argv[1] to argv[2] and nothing else: the cheapest process that
 * reads a request and writes an output file. */
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

int main(int argc, char** argv)
{
    if (argc < 3) {
        fprintf(stderr, "usage: %s input output\n", argv[0]);
        return 2;
    }
    int in = open(argv[1], O_RDONLY);
    int out = open(argv[2], O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (in < 0 || out < 0) {
        perror("open");
        return 1;
    }
    enum { chunk = 1 << 16 };
    char* buffer = malloc(chunk);
    if (!buffer)
        return 1;
    ssize_t n;
    while ((n = read(in, buffer, chunk)) > 0) {
        for (ssize_t done = 0; done < n;) {
            ssize_t w = write(out, buffer + done, (size_t)(n - done));
            if (w < 0) {
                perror("write");
                return 1;
            }
            done += w;
        }
    }
    free(buffer);
    close(in);
    return close(out) == 0 && n == 0 ? 0 : 1;
}
