/* Verifies a buffer, prints it as JSON and explains it. All that the program knows of the message
 * is its identifier.
 *
 *   inspect_message IDENTIFIER FILE
 */
#include <inttypes.h>
#include <mesh_l2vpn/inspect.h>
#include <stdio.h>
#include <stdlib.h>

static const char* const verdicts[] = {"accept it", "accept it, but not its record", "reject it"};

/* Prints what a function handed out, and gives it back. */
static void show(int result, char* text) {
  if (result == 0) {
    printf("%s\n", text);
    mesh_l2vpn_free(text);
  } else {
    printf("%s\n", mesh_l2vpn_last_error());
  }
}

int main(int argc, char** argv) {
  uint8_t bytes[65536];
  const mesh_l2vpn_message* message;
  mesh_l2vpn_verdict verdict;
  mesh_l2vpn_fault fault;
  size_t length;
  char* text = NULL;
  int result;
  FILE* const file = argc == 3 ? fopen(argv[2], "rb") : NULL;
  if (file == NULL) {
    fprintf(stderr, "usage: inspect_message IDENTIFIER FILE\n");
    return 2;
  }
  length = fread(bytes, 1, sizeof bytes, file);
  fclose(file);

  message = mesh_l2vpn_message_by_id((uint32_t)strtoul(argv[1], NULL, 0));
  if (message == NULL) {
    fprintf(stderr, "no message has the identifier %s\n", argv[1]);
    return 2;
  }
  verdict = mesh_l2vpn_verify(message, bytes, length, &fault);
  printf("%s: receivers %s\n", mesh_l2vpn_message_name(message), verdicts[verdict]);
  if (verdict != MESH_L2VPN_ACCEPTED) {
    printf("byte %" PRIu32 " %s: %s\n", fault.position, fault.path, fault.text);
  }
  result = mesh_l2vpn_to_json(message, bytes, length, &text);
  show(result, text);
  result = mesh_l2vpn_explain(message, bytes, length, MESH_L2VPN_TEXT, &text);
  show(result, text);
  return verdict == MESH_L2VPN_REJECTED;
}
