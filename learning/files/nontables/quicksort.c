#include <stdio.h>

static void swap(int *a, int *b) { int t = *a; *a = *b; *b = t; }

static int partition(int v[], int lo, int hi)
{
    int pivot = v[hi], i = lo - 1;

    for (int j = lo; j < hi; j++) {
        if (v[j] <= pivot)
            swap(&v[++i], &v[j]);
    }
    swap(&v[i + 1], &v[hi]);
    return i + 1;
}

void quicksort(int v[], int lo, int hi)
{
    if (lo < hi) {
        int p = partition(v, lo, hi);
        quicksort(v, lo, p - 1);
        quicksort(v, p + 1, hi);
    }
}

int main(void)
{
    int v[] = { 5, 3, 9, 1, 7, 2, 8 };
    quicksort(v, 0, 6);
    for (int i = 0; i < 7; i++)
        printf("%d ", v[i]);
    putchar('\n');
    return 0;
}
