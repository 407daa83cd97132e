// The part of Foundation that Tavelle uses.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>
#include <dispatch/dispatch.h>
#import <objc/NSObject.h>
#import <objc/runtime.h>

#define FOUNDATION_EXPORT CF_EXPORT
#define NS_OPTIONS CF_OPTIONS
#define NS_ASSUME_NONNULL_BEGIN CF_ASSUME_NONNULL_BEGIN
#define NS_ASSUME_NONNULL_END CF_ASSUME_NONNULL_END
#define NS_RETURNS_INNER_POINTER __attribute__((objc_returns_inner_pointer))

NS_ASSUME_NONNULL_BEGIN

typedef double NSTimeInterval;
typedef NSUInteger NSStringEncoding;
typedef unsigned short unichar;
typedef NSString* NSErrorDomain;
typedef struct _NSRange {
  NSUInteger location;
  NSUInteger length;
} NSRange;
typedef CGRect NSRect;
FOUNDATION_EXPORT const NSRect NSZeroRect;
static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
  return {{x, y}, {width, height}};
}
FOUNDATION_EXPORT SEL NSSelectorFromString(NSString* name);

@protocol NSCopying
@end

typedef struct {
  unsigned long state;
  id __unsafe_unretained _Nullable* _Nullable itemsPtr;
  unsigned long* _Nullable mutationsPtr;
  unsigned long extra[5];
} NSFastEnumerationState;

@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)length;
@end

// Values

enum : NSStringEncoding { NSUTF8StringEncoding = 4 };

@interface NSString : NSObject <NSCopying>
@property(readonly) NSUInteger length;
@property(readonly, copy) NSString* lowercaseString;
- (nullable instancetype)initWithBytes:(const void*)bytes length:(NSUInteger)length encoding:(NSStringEncoding)encoding;
- (nullable NSData*)dataUsingEncoding:(NSStringEncoding)encoding allowLossyConversion:(BOOL)isLossy;
- (BOOL)isEqualToString:(NSString*)other;
- (unichar)characterAtIndex:(NSUInteger)index;
- (NSRange)rangeOfComposedCharacterSequenceAtIndex:(NSUInteger)index;
- (NSString*)substringToIndex:(NSUInteger)end;
- (NSUInteger)lengthOfBytesUsingEncoding:(NSStringEncoding)encoding;
@end

@interface NSData : NSObject
@property(readonly) NSUInteger length;
@property(readonly) const void* bytes NS_RETURNS_INNER_POINTER;
+ (instancetype)dataWithBytes:(nullable const void*)bytes length:(NSUInteger)length;
@end

@interface NSValue : NSObject
@end

@interface NSNumber : NSValue
@property(readonly) double doubleValue;
@property(readonly) BOOL boolValue;
@property(readonly) long long longLongValue;
@end

@interface NSArray<__covariant ObjectType> : NSObject <NSFastEnumeration>
@property(readonly) NSUInteger count;
- (ObjectType)objectAtIndexedSubscript:(NSUInteger)index;
+ (instancetype)array;
+ (instancetype)arrayWithObjects:(const ObjectType _Nonnull[_Nonnull])objects count:(NSUInteger)count;
@end

@interface NSMutableArray<ObjectType> : NSArray <ObjectType>
- (void)addObject:(ObjectType)object;
@end

@interface NSDictionary<__covariant KeyType, __covariant ObjectType> : NSObject
- (nullable ObjectType)objectForKeyedSubscript:(KeyType)key;
+ (instancetype)dictionaryWithObjects:(const ObjectType _Nonnull[_Nullable])objects
                              forKeys:(const KeyType<NSCopying> _Nonnull[_Nullable])keys
                                count:(NSUInteger)count;
@end

@interface NSIndexSet : NSObject
+ (instancetype)indexSet;
+ (instancetype)indexSetWithIndex:(NSUInteger)index;
@end

@interface NSError : NSObject
@property(readonly, copy) NSErrorDomain domain;
@property(readonly) NSInteger code;
@property(readonly, copy) NSString* localizedDescription;
@end

@interface NSNotification : NSObject
@property(nullable, readonly, strong) id object;
@end

@interface NSUndoManager : NSObject
- (void)removeAllActions;
@end

// The bundle and the defaults

@interface NSBundle : NSObject
@property(class, readonly, strong) NSBundle* mainBundle;
@property(nullable, readonly, copy) NSString* bundleIdentifier;
- (nullable id)objectForInfoDictionaryKey:(NSString*)key;
@end

@interface NSUserDefaults : NSObject
@property(class, readonly, strong) NSUserDefaults* standardUserDefaults;
- (nullable id)objectForKey:(NSString*)key;
- (void)setObject:(nullable id)value forKey:(NSString*)key;
- (void)setInteger:(NSInteger)value forKey:(NSString*)key;
- (void)setDouble:(double)value forKey:(NSString*)key;
- (void)setBool:(BOOL)value forKey:(NSString*)key;
- (void)removeObjectForKey:(NSString*)key;
@end

// Loading URLs

FOUNDATION_EXPORT NSErrorDomain const NSURLErrorDomain;
enum : NSInteger {
  NSURLErrorUnknown = -1,
  NSURLErrorCancelled = -999,
  NSURLErrorBadURL = -1000,
  NSURLErrorTimedOut = -1001,
  NSURLErrorUnsupportedURL = -1002,
  NSURLErrorCannotFindHost = -1003,
  NSURLErrorCannotConnectToHost = -1004,
  NSURLErrorNetworkConnectionLost = -1005,
  NSURLErrorHTTPTooManyRedirects = -1007,
  NSURLErrorNotConnectedToInternet = -1009,
  NSURLErrorBadServerResponse = -1011,
  NSURLErrorCannotDecodeContentData = -1016,
  NSURLErrorSecureConnectionFailed = -1200,
  NSURLErrorServerCertificateUntrusted = -1202
};

@interface NSURL : NSObject
+ (nullable instancetype)URLWithString:(NSString*)string;
@end

@interface NSURLRequest : NSObject
+ (instancetype)requestWithURL:(NSURL*)url;
@end

@interface NSMutableURLRequest : NSURLRequest
@property(copy) NSString* HTTPMethod;
@property(nullable, copy) NSData* HTTPBody;
@property NSTimeInterval timeoutInterval;
- (void)setValue:(nullable NSString*)value forHTTPHeaderField:(NSString*)field;
@end

@interface NSURLResponse : NSObject
@end

@interface NSHTTPURLResponse : NSURLResponse
@property(readonly) NSInteger statusCode;
@end

@interface NSURLSessionTask : NSObject
- (void)cancel;
- (void)resume;
@end

@interface NSURLSessionDataTask : NSURLSessionTask
@end

@interface NSURLSessionConfiguration : NSObject
@property(class, readonly, strong) NSURLSessionConfiguration* defaultSessionConfiguration;
@property NSTimeInterval timeoutIntervalForRequest;
@end

@interface NSURLSession : NSObject
@property(class, readonly, strong) NSURLSession* sharedSession;
+ (NSURLSession*)sessionWithConfiguration:(NSURLSessionConfiguration*)configuration;
- (NSURLSessionDataTask*)dataTaskWithRequest:(NSURLRequest*)request
                           completionHandler:(void (^)(NSData* _Nullable data, NSURLResponse* _Nullable response,
                                                       NSError* _Nullable error))completionHandler;
- (void)invalidateAndCancel;
@end

// Events from other programs

@interface NSAppleEventDescriptor : NSObject
@property(nullable, readonly, copy) NSString* stringValue;
- (nullable NSAppleEventDescriptor*)paramDescriptorForKeyword:(FourCharCode)keyword;
@end

@interface NSAppleEventManager : NSObject
+ (NSAppleEventManager*)sharedAppleEventManager;
- (void)setEventHandler:(id)handler
            andSelector:(SEL)selector
          forEventClass:(FourCharCode)eventClass
             andEventID:(FourCharCode)eventID;
@end

NS_ASSUME_NONNULL_END
