/* The device's system properties on Linux: one store per process, filled first
 * from the file that the environment variable ZUQEL_PROPERTIES names, one
 * "name=value" a line. */
#ifndef PLATFORM_LINUX_SYS_SYSTEM_PROPERTIES_H_
#define PLATFORM_LINUX_SYS_SYSTEM_PROPERTIES_H_

#ifdef __cplusplus
extern "C" {
#endif

/* Longest value, including the terminating zero. */
#define PROP_VALUE_MAX 92

/* Copies a property's value into `value`, which has room for PROP_VALUE_MAX
 * bytes, and returns its length, 0 for an unset property. */
int __system_property_get(const char* name, char* value);

/* Sets a property. Returns 0, or -1 for a value that is too long. */
int __system_property_set(const char* name, const char* value);

#ifdef __cplusplus
}
#endif

#endif /* PLATFORM_LINUX_SYS_SYSTEM_PROPERTIES_H_ */
